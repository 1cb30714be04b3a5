#include "LocalClusterServer.h"
#include "LocalHttpServer.h"
#include "PaneView.h"
#include "ProgramState.h"
#include "QtPrinters.h"
#include "ScriptedPlatform.h"
#include "ShellFakes.h"
#include "SiteDefaults.h"
#include "SpotSources.h"
#include "WaitFor.h"
#include "frmZKR_MUF.h"
#include "frmZKR_MUF_Setup.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>

#include <gtest/gtest.h>

#include <functional>

namespace zkr {
namespace {

using test::waitFor;

const QColor Green(0, 255, 0);

// The program in a folder of its own, both sources on this machine: the
// cluster GB7TST and a web server for the spot list and the download page.
struct SetupRig {
    QTemporaryDir folder;
    LocalClusterServer node;
    LocalHttpServer web;
    ProgramState state;
    ScriptedPlatform platform;
    frmZKR_MUF window{state, platform};

    SetupRig() {
        platform.setApplicationFolder(folder.path());
        platform.setEnvironmentValue(site::WebClusterUrlVariable, web.url("/DxSpots.aspx"));
        platform.setEnvironmentValue(site::DownloadPageUrlVariable, web.url("/download.html"));
        window.sources().web().setOptions({11, 300, 600});
    }
    // Starts with settings of this own call, using the cluster of this machine.
    void start(const QString &ownCall, const char *updateCheck = "off") {
        test::writeBytes(
            folder.filePath("zkr_muf.ini"),
            QString("[Version]\r\nVersion=1.30\r\n[Call]\r\nOwnCall=%1\r\n[Locator]\r\n"
                    "OwnLocator=JO62QM\r\n[Telnet]\r\nTelnet_Call=GB7TST\r\n"
                    "Telnet_Host=127.0.0.1\r\nTelnet_Port=%2\r\n[AutoUpdateCheck]\r\n"
                    "UpdateCheck=%3\r\n")
                .arg(ownCall)
                .arg(node.port())
                .arg(updateCheck)
                .toLatin1());
        window.Form_Load();
    }
    QString ini() const { return QString::fromLatin1(test::readBytes(state.IniFilePath)); }
    frmZKR_MUF_Setup &setup() { return window.setupWindow(); }
    template <class T> T *child(const char *name) {
        return setup().findChild<T *>(QLatin1String(name));
    }
    QPushButton *button(const char *name) { return child<QPushButton>(name); }
    QColor colour(const char *name) { return button(name)->palette().color(QPalette::Button); }
    void type(const char *field, const QString &text) {
        child<QLineEdit>(field)->clear();
        QTest::keyClicks(child<QLineEdit>(field), text);
    }
    // The Setup button; `inside` runs while the dialog is open.
    void openSetup(const std::function<void(frmZKR_MUF_Setup &)> &inside) {
        setup().setModalSession([&inside](frmZKR_MUF_Setup &dialog) {
            dialog.show();
            inside(dialog);
        });
        window.Setup_Click();
    }
};

TEST(SetupDialog, OpensCentredWithTheTimerOffAndAnEditTurnsBothButtonsGreen) {
    for (const char *field : {"text_Call", "text_Locator"}) {
        SCOPED_TRACE(field);
        SetupRig rig;
        rig.start("!NOCALL!"); // web mode: the refresh timer runs
        const QString before = rig.ini();
        rig.openSetup([&](frmZKR_MUF_Setup &dialog) {
            EXPECT_FALSE(rig.window.Timer1()->isActive());
            const QRect main = rig.window.frameGeometry();
            const QRect own = dialog.frameGeometry();
            EXPECT_EQ(own.left(), main.left() + main.width() / 2 - own.width() / 2);
            EXPECT_FALSE(rig.button("Command_SaveConfig")->isEnabled());
            EXPECT_EQ(rig.colour("Command_SaveConfig"), QColor(255, 255, 255));

            QTest::keyClicks(rig.child<QLineEdit>(field), "X");
            EXPECT_EQ(rig.button("Command_ExitwWthoutSave")->text(),
                      "&E X I T\r\n(disregard changes)");
            EXPECT_TRUE(rig.button("Command_SaveConfig")->isEnabled());
            EXPECT_EQ(rig.colour("Command_SaveConfig"), Green);
            EXPECT_EQ(rig.colour("Command_ExitwWthoutSave"), Green);
            rig.button("Command_ExitwWthoutSave")->click();
        });
        EXPECT_FALSE(rig.setup().isVisible());
        EXPECT_EQ(rig.ini(), before);
        EXPECT_TRUE(rig.window.Timer1()->isActive());
    }
}

TEST(SetupDialog, WrongLocatorIsRefusedAndKeepsTheTimerOffUntilASaveSucceeds) {
    SetupRig rig;
    rig.start("!NOCALL!");
    const QString before = rig.ini();
    rig.openSetup([&](frmZKR_MUF_Setup &dialog) {
        rig.type("text_Locator", "JO6");
        rig.platform.clearLog();
        dialog.Command_SaveConfig_Click();
        EXPECT_EQ(rig.platform.log(),
                  QStringList({"beep 800 200", "arm centre",
                               R"(msgbox 49 "" "Locator is not correct !" -> 1)"}));
        EXPECT_EQ(rig.child<QLineEdit>("text_Locator")->text(), "");
        EXPECT_TRUE(dialog.isVisible());
        EXPECT_EQ(rig.ini(), before);
        EXPECT_TRUE(rig.state.Busy);
        EXPECT_FALSE(rig.window.Timer1()->isActive());

        rig.type("text_Locator", "jo62qm");
        dialog.Command_SaveConfig_Click();
    });
    EXPECT_FALSE(rig.state.Busy);
    EXPECT_TRUE(rig.window.Timer1()->isActive());
    EXPECT_TRUE(rig.ini().contains("OwnLocator=JO62QM\r\n"));
}

// With a spot in the panes, the user types a call sign and saves.
TEST(SetupDialog, SavingSwitchesToTheSourceTheCallSignAsksFor) {
    struct Case {
        const char *name, *startCall, *typed;
        const char *answer; // to the call-sign prompt; none = no prompt
        const char *mode;
        bool panesKept;
        int fontSize;
        const char *call;
    };
    const Case cases[] = {
        {"unchanged call", "DL1ABC", "dl1abc", nullptr, "TELNETCLUSTER", true, 10, "DL1ABC"},
        {"new call", "DL1ABC", "DL2XYZ", "dl2xyz", "TELNETCLUSTER", true, 10, "DL2XYZ"},
        {"web to telnet", "!NOCALL!", "DL1ABC", "DL1ABC", "TELNETCLUSTER", false, 10, "DL1ABC"},
        {"web only", "DL1ABC", "!nocall!", nullptr, "WEBCLUSTER", false, 8, "!NOCALL!"},
        {"file", "DL1ABC", "!file!", nullptr, "FILE", false, 10, "QQ7ZKR"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        SetupRig rig;
        rig.start(c.startCall);
        const int loginsBefore = rig.state.RunMode == "TELNETCLUSTER" ? 1 : 0;
        ASSERT_TRUE(waitFor([&] { return rig.node.logins().size() == loginsBefore; }));
        rig.window.workingPane(0).insertColored(QStringLiteral("earlier spot\r\n"), 0);
        rig.window.refreshPanes();
        const QString recorded = rig.folder.filePath("recorded.txt");
        test::writeBytes(recorded, "DX de SP9HWY:    50110.0  OH1XYZ       JO90JR<ES>KP20        "
                                   "         1712Z\r\n");
        rig.platform.answerFileDialog(recorded);
        if (c.answer != nullptr) {
            rig.platform.answerInputBox(QString(c.answer));
        }
        rig.platform.clearLog();

        rig.openSetup([&](frmZKR_MUF_Setup &dialog) {
            rig.type("text_Call", c.typed);
            dialog.Command_SaveConfig_Click();
        });

        EXPECT_FALSE(rig.setup().isVisible());
        EXPECT_EQ(rig.platform.log().filter("inputbox").size(), c.answer != nullptr ? 1 : 0);
        EXPECT_EQ(rig.state.RunMode, c.mode);
        EXPECT_TRUE(rig.ini().contains(QString("OwnCall=%1\r\n").arg(c.call)));
        EXPECT_EQ(rig.window.findChild<QLabel *>("Label_OwnCall")->text(),
                  QString("CALL ") + c.call);
        const QString pane = rig.window.displayPane(0)->text();
        EXPECT_EQ(pane.contains("earlier spot"), c.panesKept) << pane.toStdString();
        EXPECT_EQ(rig.window.displayPane(0)->font().pointSize(), c.fontSize);
        EXPECT_FALSE(rig.state.Busy);
        // The column table of the mode: where the frequency starts.
        EXPECT_EQ(rig.state.column(3), QString(c.mode) == "WEBCLUSTER" ? 13 : 10);
        EXPECT_EQ(rig.window.Timer1()->isActive(), QString(c.mode) == "WEBCLUSTER");
        if (QString(c.mode) == "TELNETCLUSTER") {
            EXPECT_TRUE(waitFor([&] { return rig.node.logins().value(loginsBefore) == c.call; }));
        } else {
            // Leaving the cluster ends its session.
            EXPECT_FALSE(rig.state.Telnet_Connected);
        }
        if (QString(c.mode) == "WEBCLUSTER") {
            EXPECT_EQ(rig.window.findChild<QLabel *>("Label_Telnet_Status")->text(),
                      "Listen to " + site::WebClusterBase);
            // The next tick of the refresh timer fetches the list.
            EXPECT_TRUE(waitFor([&] { return rig.web.requestCount("/DxSpots.aspx") == 1; }));
        }
        if (QString(c.mode) == "FILE") {
            EXPECT_TRUE(pane.contains("OH1XYZ")); // replayed
        }
    }
}

// A first start: call and locator are asked for, the dialog opens on the
// cluster list, and after the start-up it is shown once more, fresh.
TEST(SetupDialog, FirstRunPicksAClusterFromTheListAndShowsTheDialogAgain) {
    SetupRig rig;
    const QString listFile = rig.setup().clusterListPath();
    test::writeBytes(listFile,
                     QString("DX-Cluster|Host|Port\r\nGB7DJK|gb7djk.dxcluster.net|7300\r\n"
                             "GB7TST|127.0.0.1|%1\r\n")
                         .arg(rig.node.port())
                         .toLatin1());
    rig.platform.answerInputBox(QString("dl1abc"));
    rig.platform.answerInputBox(QString("JO62QM"));
    auto *list = rig.child<QTreeWidget>("ListView1");
    auto marked = [list](int row) {
        QTreeWidgetItem *item = list->topLevelItem(row);
        return item->font(2).bold() && item->foreground(2).color() == QColor(0, 0, 255);
    };
    int sessions = 0;
    rig.setup().setModalSession([&](frmZKR_MUF_Setup &dialog) {
        ++sessions;
        ASSERT_EQ(list->topLevelItemCount(), 2);
        EXPECT_TRUE(marked(0));               // the built-in cluster
        EXPECT_EQ(list->columnWidth(0), 127); // 1908 and 2958 twips
        EXPECT_EQ(list->columnWidth(1), 197);
        dialog.ListView1_ItemClick(list->topLevelItem(1));
        EXPECT_FALSE(marked(0));
        EXPECT_EQ(rig.colour("Command_SaveConfig"), Green);
        dialog.Command_SaveConfig_Click();
    });
    rig.window.Form_Load();

    EXPECT_EQ(sessions, 1);
    EXPECT_EQ(rig.web.requestCount("/download.html"), 1); // the update check, once
    EXPECT_TRUE(rig.setup().isVisible());
    EXPECT_EQ(rig.button("Command_ExitwWthoutSave")->text(), "&E X I T");
    EXPECT_TRUE(marked(1) && !marked(0));
    EXPECT_TRUE(rig.ini().contains(
        QString("Telnet_Call=GB7TST\r\nTelnet_Host=127.0.0.1\r\nTelnet_Port=%1\r\n")
            .arg(rig.node.port())));
    EXPECT_TRUE(rig.ini().contains("[AutoUpdateCheck]\r\nUpdateCheck=on\r\n"));
    EXPECT_TRUE(waitFor([&] { return rig.node.logins().contains("DL1ABC"); }));

    // A list that is gone leaves the rows as they were, silently.
    rig.setup().hide();
    QFile::remove(listFile);
    rig.platform.clearLog();
    rig.openSetup([&](frmZKR_MUF_Setup &dialog) {
        EXPECT_EQ(list->topLevelItemCount(), 2);
        dialog.Command_ExitwWthoutSave_Click();
    });
    EXPECT_TRUE(rig.platform.log().filter("msgbox").isEmpty());
}

TEST(SetupDialog, UpdateCheckAtStartUpAndOnTheBox) {
    SetupRig rig;
    rig.start("DL1ABC", "on");
    EXPECT_EQ(rig.web.requestCount("/download.html"), 1);
    LocalHttpServer::Response page;
    page.body = "<h2>ZKR_MUF V1.31</h2>";
    rig.web.setResponse("/download.html", page);
    rig.platform.clearLog();
    rig.platform.answerMessageBox(7); // No
    rig.openSetup([&](frmZKR_MUF_Setup &dialog) {
        // Reading the settings again finds the box ticked: no second check.
        EXPECT_EQ(rig.web.requestCount("/download.html"), 1);
        QCheckBox *box = rig.child<QCheckBox>("CheckBox_AutoUpdate");
        box->click();
        EXPECT_TRUE(rig.ini().contains("[AutoUpdateCheck]\r\nUpdateCheck=off\r\n"));
        box->click();
        EXPECT_TRUE(rig.ini().contains("[AutoUpdateCheck]\r\nUpdateCheck=on\r\n"));
        EXPECT_EQ(rig.platform.messages(),
                  QStringList{"Version  V1.31  is available !  \r\nDo you want to open the "
                              "download page in your web browser ?\r\n"});
        // A page that cannot be fetched is reported by the fetch, then the
        // button says there is nothing new.
        rig.state.UpdatePage_Url = "http://127.0.0.1:1/download.html";
        dialog.CommandButton_Check_for_Updates_Click();
        dialog.Command_ExitwWthoutSave_Click();
    });
    EXPECT_EQ(rig.platform.messages().mid(1),
              QStringList({"Can't connect. Make sure url is correct or even if host exists.",
                           "No updates available. You have the latest version !"}));
    EXPECT_TRUE(rig.platform.log().filter("openurl").isEmpty());
}

} // namespace
} // namespace zkr
