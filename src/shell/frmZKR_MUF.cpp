#include "frmZKR_MUF.h"

#include "Platform.h"
#include "ProgramState.h"
#include "Startup.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QTabWidget>
#include <QTimer>
#include <QVBoxLayout>

namespace zkr {

frmZKR_MUF::frmZKR_MUF(ProgramState &state, Platform &platform, QWidget *parent)
    : QMainWindow(parent), state_(state), platform_(platform) {
    auto *central = new QWidget(this);
    auto *column = new QVBoxLayout(central);
    auto *labels = new QHBoxLayout;
    Label_OwnCall_ = new QLabel(central);
    Label_OwnLocator_ = new QLabel(central);
    Label_OwnCall_->setVisible(false);
    Label_OwnLocator_->setVisible(false);
    labels->addWidget(Label_OwnCall_);
    labels->addWidget(Label_OwnLocator_);
    labels->addStretch();
    column->addLayout(labels);

    SSTab1_ = new QTabWidget(central);
    for (const char *caption : {"All", "VHF", "2m", "Es"}) {
        auto *pane = new QPlainTextEdit(SSTab1_);
        pane->setReadOnly(true);
        SSTab1_->addTab(pane, QString::fromLatin1(caption));
    }
    column->addWidget(SSTab1_);
    setCentralWidget(central);
    resize(1010, 540);

    Timer1_ = new QTimer(this);
}

void frmZKR_MUF::Form_Load() {
    zkr::Form_Load(state_, platform_, *this);
}

void frmZKR_MUF::setMainCaption(const QString &caption) {
    setWindowTitle(caption);
}

void frmZKR_MUF::setTimerInterval(int milliseconds) {
    Timer1_->setInterval(milliseconds);
}

void frmZKR_MUF::setTimerEnabled(bool enabled) {
    if (enabled) {
        Timer1_->start();
    } else {
        Timer1_->stop();
    }
}

void frmZKR_MUF::layoutInitial() {}

void frmZKR_MUF::checkSettingsFile() {}

void frmZKR_MUF::showOwnCallLabels(const QString &callCaption, const QString &locatorCaption) {
    Label_OwnCall_->setText(callCaption);
    Label_OwnCall_->setVisible(true);
    Label_OwnLocator_->setText(locatorCaption);
    Label_OwnLocator_->setVisible(true);
}

void frmZKR_MUF::selectTab(int index) {
    if (index >= 0 && index < SSTab1_->count()) {
        SSTab1_->setCurrentIndex(index);
    }
}

void frmZKR_MUF::setSetupSaveEnabled(bool) {}

QSize frmZKR_MUF::mainWindowSize() {
    return frameGeometry().size();
}

void frmZKR_MUF::moveMainWindow(QPoint topLeft) {
    move(topLeft);
}

void frmZKR_MUF::centreDialogsOverMain() {}

void frmZKR_MUF::prepareDeveloperConsole() {}

void frmZKR_MUF::layoutByMode() {}

void frmZKR_MUF::telnetConnect() {}

void frmZKR_MUF::replaySpotFile() {}

} // namespace zkr
