#include "IniFile.h"
#include "ProgramEnded.h"
#include "ProgramState.h"
#include "QtPrinters.h"
#include "ScriptedPlatform.h"
#include "ShellFakes.h"
#include "SiteDefaults.h"
#include "frmInfo.h"
#include "frmZKR_MUF.h"

#include <QCheckBox>
#include <QFontInfo>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

namespace zkr {
namespace {

class MainWindowTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(dir_.isValid());
        platform_.setApplicationFolder(dir_.path());
        state_.IniFilePath = dir_.filePath(QStringLiteral("zkr_muf.ini"));
        state_.IniFileName = QStringLiteral("zkr_muf.ini");
        window_.setSpotPageEvaluation([this] { ++evaluations_; });
    }
    template <class T> T *child(const char *name) {
        T *widget = window_.findChild<T *>(QLatin1String(name));
        EXPECT_NE(widget, nullptr) << name;
        return widget;
    }
    QColor background(QWidget *widget) { return widget->palette().color(widget->backgroundRole()); }
    QPlainTextEdit *pane(QWidget *widget) { return qobject_cast<QPlainTextEdit *>(widget); }

    QTemporaryDir dir_;
    ProgramState state_;
    ScriptedPlatform platform_;
    frmZKR_MUF window_{state_, platform_};
    int evaluations_ = 0;
};

QWidget *nextTabStop(QWidget *widget) {
    do {
        widget = widget->nextInFocusChain();
    } while ((widget->focusPolicy() & Qt::TabFocus) == 0);
    return widget;
}

TEST_F(MainWindowTest, HasItsControlsWithTheirCaptionsAndColours) {
    const std::pair<const char *, const char *> captions[] = {
        {"Command_End", "&EXIT"},
        {"About", "&About"},
        {"Setup", "&Setup"},
        {"Check_Over144MHZOnly", "only spots >= 144&MHz"},
        {"Check_EsSpotsOnly", "only Es-spo&ts"}};
    for (const auto &[name, caption] : captions) {
        EXPECT_EQ(child<QAbstractButton>(name)->text(), QLatin1String(caption)) << name;
    }
    QTabWidget *tabs = window_.SSTab1();
    ASSERT_EQ(tabs->count(), 4);
    EXPECT_EQ((QStringList{tabs->tabText(0), tabs->tabText(1), tabs->tabText(2), tabs->tabText(3)}),
              (QStringList{QStringLiteral("All"), QStringLiteral("VHF"), QStringLiteral("2m"),
                           QStringLiteral("Es")}));
    for (int i = 0; i < 4; ++i) {
        for (QWidget *widget : {window_.displayPane(i), window_.workingPane(i)}) {
            ASSERT_NE(pane(widget), nullptr);
            EXPECT_TRUE(pane(widget)->isReadOnly());
            EXPECT_EQ(widget->parentWidget(), tabs->widget(i));
        }
        EXPECT_TRUE(window_.workingPane(i)->isHidden());
        EXPECT_FALSE(window_.displayPane(i)->isHidden());
    }
    for (const char *name :
         {"Label_Telnet_Status", "Label_OwnCall", "Label_OwnLocator", "Label2"}) {
        EXPECT_TRUE(child<QLabel>(name)->isHidden()) << name;
    }
    EXPECT_FALSE(window_.Timer1()->isActive());

    // Colours are kept as &H00BBGGRR: &HC0C000 is teal, &HC0FFFF light yellow.
    EXPECT_EQ(background(child<QLabel>("Label_OwnCall")), QColor(0, 192, 192));
    EXPECT_EQ(background(child<QLabel>("Label_OwnLocator")), QColor(0, 192, 192));
    EXPECT_EQ(background(child<QCheckBox>("Check_EsSpotsOnly")), QColor(0, 192, 192));
    EXPECT_EQ(background(child<QLabel>("Label2")), QColor(255, 255, 192));
    EXPECT_EQ(background(child<QLabel>("Label_Telnet_Status")), QColor(255, 255, 255));

    // Keyboard order: tab strip, then Setup, About, EXIT.
    EXPECT_EQ(nextTabStop(child<QWidget>("Setup")), child<QWidget>("About"));
    EXPECT_EQ(nextTabStop(child<QWidget>("About")), child<QWidget>("Command_End"));
}

TEST_F(MainWindowTest, LayoutPassesFollowTheRunMode) {
    struct Case {
        const char *mode;
        bool secondPass;
        int fontSize;
        bool cleared;
        bool statusShown;
        bool timerActive;
        bool label2Shown;
        int tab;
        bool fileMode;
        int evaluations;
    };
    const Case cases[] = {
        {"WEBCLUSTER", false, 8, true, true, false, true, 2, false, 0},
        {"webcluster", true, 8, true, true, true, true, 2, false, 1},
        {"TELNETCLUSTER", true, 10, false, false, false, false, 0, false, 0},
        {"FILE", false, 10, false, false, false, false, 0, true, 0},
        // Any other mode leaves everything as it was.
        {"OTHER", true, 12, false, false, true, true, 2, false, 0},
    };
    auto *label2 = child<QLabel>("Label2");
    auto *status = child<QLabel>("Label_Telnet_Status");
    for (const Case &c : cases) {
        SCOPED_TRACE(c.mode);
        state_.RunMode = QLatin1String(c.mode);
        state_.FileMode_Active = false;
        state_.Web_Offline = true;
        evaluations_ = 0;
        for (int i = 0; i < 4; ++i) {
            pane(window_.displayPane(i))->setPlainText(QStringLiteral("spot"));
            window_.displayPane(i)->setFont(QFont(QStringLiteral("Monospace"), 12));
        }
        window_.SSTab1()->setCurrentIndex(2);
        label2->setVisible(true);
        window_.Timer1()->start();
        for (const char *name : {"Check_Over144MHZOnly", "Check_EsSpotsOnly"}) {
            child<QCheckBox>(name)->setVisible(true);
            child<QCheckBox>(name)->setEnabled(true);
            child<QCheckBox>(name)->setChecked(true);
        }
        if (c.secondPass) {
            window_.layoutByMode();
        } else {
            window_.Timer1()->stop();
            window_.layoutInitial();
        }

        const bool known = QLatin1String(c.mode) != QLatin1String("OTHER");
        for (int i = 0; i < 4; ++i) {
            EXPECT_EQ(window_.displayPane(i)->font().pointSize(), c.fontSize);
            EXPECT_EQ(pane(window_.displayPane(i))->toPlainText().isEmpty(), c.cleared);
            if (known) {
                EXPECT_EQ(window_.workingPane(i)->font().pointSize(), c.fontSize);
                EXPECT_TRUE(QFontInfo(window_.displayPane(i)->font()).fixedPitch());
            }
        }
        for (const char *name : {"Check_Over144MHZOnly", "Check_EsSpotsOnly"}) {
            auto *filter = child<QCheckBox>(name);
            EXPECT_EQ(filter->isHidden() && !filter->isEnabled() && !filter->isChecked(), known)
                << name;
        }
        EXPECT_EQ(!status->isHidden(), c.statusShown);
        if (c.statusShown) {
            EXPECT_EQ(status->text(), QStringLiteral("Listen to ") + site::WebClusterBase);
            EXPECT_EQ(background(status), QColor(255, 255, 0));
        }
        EXPECT_EQ(window_.Timer1()->isActive(), c.timerActive);
        EXPECT_EQ(!label2->isHidden(), c.label2Shown);
        EXPECT_EQ(window_.SSTab1()->currentIndex(), c.tab);
        EXPECT_EQ(state_.FileMode_Active, c.fileMode);
        EXPECT_EQ(state_.Web_Offline, !c.fileMode);
        EXPECT_EQ(evaluations_, c.evaluations);
    }
}

TEST_F(MainWindowTest, SecondPassAfterAFirstRunClearsTheFlagOnlyInTelnetMode) {
    for (const char *mode : {"TELNETCLUSTER", "WEBCLUSTER"}) {
        state_.RunMode = QLatin1String(mode);
        state_.Settings_Created = true;
        window_.layoutByMode();
        EXPECT_EQ(state_.Settings_Created, QLatin1String(mode) == QLatin1String("WEBCLUSTER"))
            << mode;
    }
}

TEST_F(MainWindowTest, TimerEvaluatesTheWebPageEverySixtyTicks) {
    for (int tick = 1; tick <= 59; ++tick) {
        window_.Timer1_Timer();
    }
    EXPECT_EQ(evaluations_, 0);
    EXPECT_EQ(state_.Refresh_Seconds, 59);
    window_.Timer1_Timer();
    EXPECT_EQ(evaluations_, 1);
    EXPECT_EQ(state_.Refresh_Seconds, 0);
}

TEST_F(MainWindowTest, ExitAndClosingTheWindowBothSavePositionAndTab) {
    for (const bool byFrame : {false, true}) {
        SCOPED_TRACE(byFrame);
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
        EXPECT_FALSE(state.Telnet_Connected);
        auto *status = window.findChild<QLabel *>(QStringLiteral("Label_Telnet_Status"));
        EXPECT_EQ(status->text(), QStringLiteral(" Not connected ! Click to Check Setup or check "
                                                 "your firewall settings !"));
        EXPECT_EQ(background(status), QColor(255, 0, 0));
        EXPECT_TRUE(window.isHidden());
    }
}

TEST_F(MainWindowTest, CopyPutsTheVisiblePaneOnTheClipboard) {
    auto *visible = pane(window_.displayPane(1));
    visible->setPlainText(QStringLiteral("DX de A\nDX de B"));
    pane(window_.displayPane(0))->setPlainText(QStringLiteral("other tab"));
    window_.SSTab1()->setCurrentIndex(1);
    window_.Copy_Click();
    EXPECT_EQ(platform_.clipboardText(), QStringLiteral("DX de A\nDX de B"));

    QTextCursor cursor = visible->textCursor();
    cursor.setPosition(3);
    cursor.setPosition(9, QTextCursor::KeepAnchor);
    visible->setTextCursor(cursor);
    QTest::keyClick(visible, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(platform_.clipboardText(), QStringLiteral("de A\nD"));
}

TEST_F(MainWindowTest, StatusLabelClickSwitchesToTelnetOrRefreshesTheWebPage) {
    auto *status = child<QLabel>("Label_Telnet_Status");
    state_.RunMode = QStringLiteral("FILE");
    QTest::mouseClick(status, Qt::LeftButton);
    EXPECT_EQ(state_.RunMode, QStringLiteral("TELNETCLUSTER"));
    EXPECT_EQ(evaluations_, 0);

    state_.RunMode = QStringLiteral("WEBCLUSTER");
    QTest::mouseClick(status, Qt::LeftButton);
    EXPECT_TRUE(window_.Timer1()->isActive());
    EXPECT_EQ(evaluations_, 1);
}

TEST_F(MainWindowTest, AboutOpensCentredAndKeepsTheWebTimer) {
    window_.setGeometry(100, 80, 900, 500);
    for (const char *mode : {"WEBCLUSTER", "TELNETCLUSTER"}) {
        state_.RunMode = QLatin1String(mode);
        window_.Timer1()->start();
        window_.About_Click();
        frmInfo &info = window_.aboutWindow();
        EXPECT_TRUE(info.isVisible());
        EXPECT_LE(
            (info.frameGeometry().center() - window_.frameGeometry().center()).manhattanLength(),
            2);
        EXPECT_EQ(window_.Timer1()->isActive(), QLatin1String(mode) == QLatin1String("WEBCLUSTER"));
        info.close();
    }
}

TEST_F(MainWindowTest, StartingAgainRestoresPositionAndTab) {
    platform_.answerInputBox(QStringLiteral("dl1abc"));
    platform_.answerInputBox(QStringLiteral("JO62qm"));
    window_.Form_Load();
    EXPECT_EQ(child<QLabel>("Label_OwnCall")->text(), QStringLiteral("CALL DL1ABC"));
    EXPECT_EQ(child<QLabel>("Label_OwnLocator")->text(), QStringLiteral("LOC JO62QM"));
    EXPECT_FALSE(child<QLabel>("Label_OwnCall")->isHidden());

    // The next run: stored as web-only user, on tab 3 at (40, 30).
    const QString ini = state_.IniFilePath;
    ASSERT_EQ(Ini_Write(QStringLiteral("Call"), QStringLiteral("OwnCall"),
                        QStringLiteral("!nocall!"), ini),
              QStringLiteral("1"));
    for (const char *key : {"Left=40", "Top=30", "SSTAB=3"}) {
        const QStringList pair = QString::fromLatin1(key).split(QLatin1Char('='));
        ASSERT_EQ(Ini_Write(QStringLiteral("Position"), pair[0], pair[1], ini),
                  QStringLiteral("1"));
    }
    ProgramState state;
    ScriptedPlatform platform;
    platform.setApplicationFolder(dir_.path());
    frmZKR_MUF window(state, platform);
    window.Form_Load();
    EXPECT_TRUE(platform.log().isEmpty());
    EXPECT_EQ(state.RunMode, QStringLiteral("WEBCLUSTER"));
    EXPECT_EQ(window.pos(), QPoint(40, 30));
    EXPECT_EQ(window.SSTab1()->currentIndex(), 3);
    EXPECT_TRUE(window.Timer1()->isActive());
    EXPECT_EQ(window.displayPane(0)->font().pointSize(), 8);
}

} // namespace
} // namespace zkr
