#include "PaneView.h"
#include "ProgramEnded.h"
#include "ProgramState.h"
#include "QtPrinters.h"
#include "ScriptedPlatform.h"
#include "ShellFakes.h"
#include "SiteDefaults.h"
#include "frmZKR_MUF.h"

#include <QCheckBox>
#include <QFontMetrics>
#include <QLabel>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTimer>

#include <gtest/gtest.h>

namespace zkr {
namespace {

QColor background(const QWidget *widget) {
    return widget->palette().color(widget->backgroundRole());
}

// Puts one committed line into working pane i, as an evaluation would.
void printInto(frmZKR_MUF &window, int i, const QString &text) {
    window.workingPane(i).insertColored(text + QStringLiteral("\r\n"), 0);
    window.workingPane(i).setCaret(0);
    window.refreshPanes();
}

class MainWindowTest : public ::testing::Test {
protected:
    MainWindowTest() {
        state_.IniFilePath = dir_.filePath(QStringLiteral("zkr_muf.ini"));
        window_.setSpotPageEvaluation([this] { ++evaluations_; });
    }
    template <class T> T *child(const char *name) {
        return window_.findChild<T *>(QLatin1String(name));
    }

    QTemporaryDir dir_;
    ProgramState state_;
    ScriptedPlatform platform_;
    frmZKR_MUF window_{state_, platform_};
    int evaluations_ = 0;
};

TEST_F(MainWindowTest, HasItsControlsCaptionsColoursAndTabOrder) {
    const std::pair<const char *, const char *> captions[] = {
        {"Command_End", "&EXIT"},
        {"About", "&About"},
        {"Setup", "&Setup"},
        {"Check_Over144MHZOnly", "only spots >= 144&MHz"},
        {"Check_EsSpotsOnly", "only Es-spo&ts"}};
    for (const auto &[name, caption] : captions) {
        ASSERT_NE(child<QAbstractButton>(name), nullptr) << name;
        EXPECT_EQ(child<QAbstractButton>(name)->text(), QLatin1String(caption));
    }
    QTabWidget *tabs = window_.SSTab1();
    const char *tabCaptions[] = {"All", "VHF", "2m", "Es"};
    ASSERT_EQ(tabs->count(), 4);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(tabs->tabText(i), QLatin1String(tabCaptions[i]));
        ASSERT_NE(window_.displayPane(i), nullptr);
        EXPECT_EQ(window_.displayPane(i)->parentWidget(), tabs->widget(i));
        // The visible pane shows its working pane.
        EXPECT_EQ(window_.displayPane(i)->source(), &window_.workingPane(i));
    }
    for (const char *name :
         {"Label_Telnet_Status", "Label_OwnCall", "Label_OwnLocator", "Label2"}) {
        ASSERT_NE(child<QLabel>(name), nullptr) << name;
        EXPECT_TRUE(child<QLabel>(name)->isHidden()) << name;
    }
    // Colours are kept as &H00BBGGRR: &HC0C000 is teal, &HC0FFFF light yellow.
    EXPECT_EQ(background(child<QLabel>("Label_OwnCall")), QColor(0, 192, 192));
    EXPECT_EQ(background(child<QCheckBox>("Check_EsSpotsOnly")), QColor(0, 192, 192));
    EXPECT_EQ(background(child<QLabel>("Label2")), QColor(255, 255, 192));

    QStringList order{QStringLiteral("Setup")}; // keyboard order of the buttons
    QWidget *widget = child<QWidget>("Setup");
    while (order.size() < 3) {
        do {
            widget = widget->nextInFocusChain();
        } while (!(widget->focusPolicy() & Qt::TabFocus));
        order << widget->objectName();
    }
    EXPECT_EQ(order, (QStringList{QStringLiteral("Setup"), QStringLiteral("About"),
                                  QStringLiteral("Command_End")}));
}

TEST_F(MainWindowTest, LayoutPassesFollowTheRunMode) {
    struct Case {
        const char *mode;
        bool second;
        int fontSize;
        bool cleared, statusShown, timerOn, label2Shown;
        int tab;
        bool fileMode;
        int evaluations;
    };
    const Case cases[] = {
        {"WEBCLUSTER", false, 8, true, true, false, true, 2, false, 0},
        {"webcluster", true, 8, true, true, true, true, 2, false, 1},
        {"TELNETCLUSTER", true, 10, false, false, false, false, 0, false, 0},
        {"FILE", false, 10, false, false, false, false, 0, true, 0},
    };
    auto *label2 = child<QLabel>("Label2");
    auto *status = child<QLabel>("Label_Telnet_Status");
    for (const Case &c : cases) {
        SCOPED_TRACE(c.mode);
        state_.RunMode = QLatin1String(c.mode);
        state_.FileMode_Active = false;
        evaluations_ = 0;
        for (int i = 0; i < 4; ++i) {
            printInto(window_, i, QStringLiteral("spot"));
            window_.displayPane(i)->setFont(QFont(QStringLiteral("Monospace"), 12));
        }
        window_.SSTab1()->setCurrentIndex(2);
        label2->setVisible(true);
        window_.Timer1()->start();
        for (QCheckBox *filter : window_.centralWidget()->findChildren<QCheckBox *>()) {
            filter->setVisible(true);
            filter->setEnabled(true);
            filter->setChecked(true);
        }
        if (c.second) {
            window_.layoutByMode();
        } else {
            window_.Timer1()->stop();
            window_.layoutInitial();
        }

        for (int i = 0; i < 4; ++i) {
            EXPECT_EQ(window_.displayPane(i)->font().pointSize(), c.fontSize);
            EXPECT_EQ(window_.displayPane(i)->text().isEmpty(), c.cleared);
            const QFontMetrics metrics(window_.displayPane(i)->font()); // columns line up
            EXPECT_EQ(metrics.horizontalAdvance(QLatin1Char('i')),
                      metrics.horizontalAdvance(QLatin1Char('W')));
        }
        for (QCheckBox *filter : window_.centralWidget()->findChildren<QCheckBox *>()) {
            EXPECT_TRUE(filter->isHidden() && !filter->isEnabled() && !filter->isChecked());
        }
        EXPECT_EQ(!status->isHidden(), c.statusShown);
        if (c.statusShown) {
            EXPECT_EQ(status->text(), QStringLiteral("Listen to ") + site::WebClusterBase);
            EXPECT_EQ(background(status), QColor(255, 255, 0));
        }
        EXPECT_EQ(window_.Timer1()->isActive(), c.timerOn);
        EXPECT_EQ(!label2->isHidden(), c.label2Shown);
        EXPECT_EQ(window_.SSTab1()->currentIndex(), c.tab);
        EXPECT_EQ(state_.FileMode_Active, c.fileMode);
        EXPECT_EQ(evaluations_, c.evaluations);
    }
}

TEST_F(MainWindowTest, ExitAndClosingTheWindowBothSavePositionAndTab) {
    for (const bool byFrame : {false, true}) {
        ProgramState state;
        state.IniFilePath = state_.IniFilePath;
        frmZKR_MUF window(state, platform_);
        window.move(123, 45);
        window.SSTab1()->setCurrentIndex(2);
        if (byFrame) {
            EXPECT_THROW(window.close(), ProgramEnded);
        } else {
            EXPECT_THROW(window.Command_End_Click(), ProgramEnded);
        }
        EXPECT_EQ(test::readBytes(state.IniFilePath),
                  QByteArrayLiteral("[Position]\r\nLeft=123\r\nTop=45\r\nSSTAB=2\r\n"));
        EXPECT_TRUE(state.Busy);
        auto *status = window.findChild<QLabel *>(QStringLiteral("Label_Telnet_Status"));
        EXPECT_EQ(status->text(), QStringLiteral(" Not connected ! Click to Check Setup or check "
                                                 "your firewall settings !"));
        EXPECT_EQ(background(status), QColor(255, 0, 0));
        EXPECT_TRUE(window.isHidden());
    }
}

} // namespace
} // namespace zkr
