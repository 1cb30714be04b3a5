#include "frmInfo.h"

#include "MsgBox_Pos.h"
#include "Platform.h"
#include "ProgramState.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace zkr {

namespace {

const QColor LinkColour(0, 0, 255);
const QColor HoveredLinkColour(204, 0, 0);

QString withoutScheme(const QString &url) {
    QString text = url;
    for (const char *scheme : {"mailto:", "https://", "http://"}) {
        if (text.startsWith(QLatin1String(scheme))) {
            text.remove(0, static_cast<qsizetype>(qstrlen(scheme)));
        }
    }
    if (text.endsWith(QLatin1Char('/'))) {
        text.chop(1);
    }
    return text;
}

} // namespace

frmInfo::frmInfo(const ProgramState &state, Platform &platform, QWidget *parent)
    : QDialog(parent), state_(state), platform_(platform) {
    setObjectName(QStringLiteral("frmInfo"));
    setWindowTitle(QStringLiteral("About ZKR_MUF"));
    setMouseTracking(true);

    auto *column = new QVBoxLayout(this);
    Text1_ = new QPlainTextEdit(this);
    Text1_->setObjectName(QStringLiteral("Text1"));
    Text1_->setReadOnly(true);
    Text1_->setFrameShape(QFrame::NoFrame);
    Text1_->setBackgroundVisible(false);
    Text1_->setPlainText(aboutText(state).replace(QStringLiteral("\r\n"), QStringLiteral("\n")));
    Text1_->setFixedHeight(Text1_->fontMetrics().lineSpacing() * 5 + 8);
    column->addWidget(Text1_);

    auto makeLink = [this, column](const QString &name, const QString &target) {
        auto *label = new QLabel(withoutScheme(target), this);
        label->setObjectName(name);
        label->setTextFormat(Qt::PlainText);
        label->setCursor(Qt::PointingHandCursor);
        label->setToolTip(target);
        label->installEventFilter(this);
        setHovered(label, false);
        column->addWidget(label);
        label->setVisible(!target.isEmpty());
        return label;
    };
    lblHyperlink_ = makeLink(QStringLiteral("lblHyperlink"), state.HomePage_Url);
    lblEmaillink_ = makeLink(QStringLiteral("lblEmaillink"), state.ContactMail_Url);

    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    Command1_ = new QPushButton(QStringLiteral("&Close"), this);
    Command1_->setObjectName(QStringLiteral("Command1"));
    Command1_->setDefault(true);
    buttons->addWidget(Command1_);
    column->addLayout(buttons);
    connect(Command1_, &QPushButton::clicked, this, &QDialog::close);

    setFixedSize(sizeHint().expandedTo(QSize(380, 0)));
}

QString frmInfo::aboutText(const ProgramState &state) {
    const QString crLf = QStringLiteral("\r\n");
    return QStringLiteral("ZKR_MUF  MUF Calculator") + crLf + QStringLiteral("Version ") +
           QStringLiteral("V") + state.ProgramVersion + QStringLiteral("  ") + state.ProgramDate +
           crLf + crLf + QStringLiteral("Sporadic-E MUF estimates from live DX-cluster spots.");
}

bool frmInfo::isLinkHovered(const QLabel *label) const {
    return label->font().underline();
}

void frmInfo::setHovered(QLabel *label, bool hovered) {
    QFont font = label->font();
    font.setUnderline(hovered);
    label->setFont(font);
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, hovered ? HoveredLinkColour : LinkColour);
    label->setPalette(palette);
}

bool frmInfo::eventFilter(QObject *watched, QEvent *event) {
    auto *label = watched == lblHyperlink_   ? lblHyperlink_
                  : watched == lblEmaillink_ ? lblEmaillink_
                                             : nullptr;
    if (label == nullptr) {
        return QDialog::eventFilter(watched, event);
    }
    switch (event->type()) {
    case QEvent::Enter:
    case QEvent::MouseMove:
        setHovered(label, true);
        linkActive_ = true;
        break;
    case QEvent::Leave:
        setHovered(label, false);
        break;
    case QEvent::MouseButtonRelease:
        if (static_cast<QMouseEvent *>(event)->button() == Qt::LeftButton &&
            label->rect().contains(static_cast<QMouseEvent *>(event)->position().toPoint())) {
            if (label == lblHyperlink_) {
                lblHyperlink_Click();
            } else {
                lblEmaillink_Click();
            }
            return true;
        }
        break;
    default:
        break;
    }
    return QDialog::eventFilter(watched, event);
}

void frmInfo::mouseMoveEvent(QMouseEvent *event) {
    Form_MouseMove();
    QDialog::mouseMoveEvent(event);
}

void frmInfo::Form_MouseMove() {
    setHovered(lblHyperlink_, false);
    setHovered(lblEmaillink_, false);
}

void frmInfo::lblHyperlink_Click() {
    openTarget(state_.HomePage_Url,
               QStringLiteral("There was an error when trying to open the default browser"));
}

void frmInfo::lblEmaillink_Click() {
    openTarget(state_.ContactMail_Url,
               QStringLiteral("There was an error when trying to open the default email client"));
}

void frmInfo::openTarget(const QString &target, const QString &failureText) {
    if (!linkActive_ || target.isEmpty()) {
        return;
    }
    if (!platform_.openUrl(target)) {
        platform_.beep(800, 200);
        MsgBox_Pos(platform_);
        platform_.messageBox(failureText, MsgButtons::Critical, QStringLiteral("Error"));
    }
}

} // namespace zkr
