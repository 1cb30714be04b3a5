#include "LocalClusterServer.h"
#include "LocalHttpServer.h"
#include "PaneView.h"
#include "ProgramState.h"
#include "QtPrinters.h"
#include "ScriptedPlatform.h"
#include "ShellFakes.h"
#include "SiteDefaults.h"
#include "SpotSources.h"
#include "frmZKR_MUF.h"
#include "frmZKR_MUF_Setup.h"

#include <QCheckBox>
#include <QDir>
#include <QElapsedTimer>
#include <QFont>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>

#include <gtest/gtest.h>

#include <functional>
#include <optional>

namespace zkr {
namespace {

bool waitFor(const std::function<bool()> &condition, int ms = 5000) {
    QElapsedTimer clock;
    clock.start();
    while (!condition() && clock.elapsed() < ms) {
        QTest::qWait(10);
    }
    return condition();
}

const QColor Green(0, 255, 0);
const QColor White(255, 255, 255);

// The program started from a folder with its settings (and, when given, a
// cluster list), both sources on this machine: the cluster GB7TST and a web
// server for the spot list and the download page.
struct SetupRig {
    QTemporaryDir folder;
    LocalClusterServer node;
    LocalHttpServer web;
    ProgramState state;
    ScriptedPlatform platform;
    std::unique_ptr<frmZKR_MUF> window;

    explicit SetupRig(const QString &ownCall, const char *updateCheck = "off",
                      const QString &clusterCall = QStringLiteral("GB7TST"),
                      std::optional<quint16> clusterPort = std::nullopt) {
        test::writeBytes(
            iniPath(), QString("[Version]\r\nVersion=1.30\r\n[Call]\r\nOwnCall=%1\r\n[Locator]\r\n"
                               "OwnLocator=JO62QM\r\n[Telnet]\r\nTelnet_Call=%2\r\n"
                               "Telnet_Host=127.0.0.1\r\nTelnet_Port=%3\r\n[AutoUpdateCheck]\r\n"
                               "UpdateCheck=%4\r\n")
                           .arg(ownCall, clusterCall)
                           .arg(clusterPort.value_or(node.port()))
                           .arg(updateCheck)
                           .toLatin1());
        platform.setApplicationFolder(folder.path());
        platform.setEnvironmentValue(site::WebClusterUrlVariable, web.url("/DxSpots.aspx"));
        platform.setEnvironmentValue(site::DownloadPageUrlVariable, web.url("/download.html"));
        window = std::make_unique<frmZKR_MUF>(state, platform);
        window->sources().web().setOptions({11, 300, 600});
        window->Form_Load();
    }

    QString iniPath() const { return folder.filePath("zkr_muf.ini"); }
    QString ini() const { return QString::fromLatin1(test::readBytes(iniPath())); }
    frmZKR_MUF_Setup &setup() { return window->setupWindow(); }
    template <class T> T *child(const char *name) {
        return setup().findChild<T *>(QLatin1String(name));
    }
    QPushButton *saveButton() { return child<QPushButton>("Command_SaveConfig"); }
    QPushButton *exitButton() { return child<QPushButton>("Command_ExitwWthoutSave"); }
    QTreeWidget *list() { return child<QTreeWidget>("ListView1"); }
    void type(const char *field, const QString &text) {
        child<QLineEdit>(field)->clear();
        QTest::keyClicks(child<QLineEdit>(field), text);
    }
    // Opens the dialog with the Setup button and runs `inside` while it is
    // open, as the user's clicks would.
    void openSetup(const std::function<void(frmZKR_MUF_Setup &)> &inside) {
        setup().setModalSession([&inside](frmZKR_MUF_Setup &dialog) {
            dialog.show();
            inside(dialog);
        });
        window->Setup_Click();
    }
    QStringList inputBoxes() const { return platform.log().filter("inputbox"); }
};

QColor buttonColour(const QPushButton *button) {
    return button->palette().color(QPalette::Button);
}

TEST(SetupDialog, OpensCentredWithTheTimerOffAndAnEditTurnsBothButtonsGreen) {
    for (const char *field : {"text_Call", "text_Locator"}) {
        SCOPED_TRACE(field);
        SetupRig rig("!NOCALL!"); // web mode: the refresh timer runs
        ASSERT_TRUE(rig.window->Timer1()->isActive());
        rig.window->move(100, 80);
        const QByteArray before = test::readBytes(rig.iniPath());
        rig.openSetup([&](frmZKR_MUF_Setup &dialog) {
            EXPECT_FALSE(rig.window->Timer1()->isActive());
            const QRect main = rig.window->frameGeometry();
            const QRect own = dialog.frameGeometry();
            EXPECT_EQ(own.left(), main.left() + main.width() / 2 - own.width() / 2);
            EXPECT_EQ(rig.exitButton()->text(), "&E X I T");
            EXPECT_FALSE(rig.saveButton()->isEnabled());
            EXPECT_EQ(buttonColour(rig.exitButton()), White);

            QTest::keyClicks(rig.child<QLineEdit>(field), "X");
            EXPECT_EQ(rig.exitButton()->text(), "&E X I T\r\n(disregard changes)");
            EXPECT_TRUE(rig.saveButton()->isEnabled());
            EXPECT_EQ(buttonColour(rig.saveButton()), Green);
            EXPECT_EQ(buttonColour(rig.exitButton()), Green);
            rig.exitButton()->click();
        });
        EXPECT_FALSE(rig.setup().isVisible());
        EXPECT_FALSE(rig.saveButton()->isEnabled());
        EXPECT_EQ(test::readBytes(rig.iniPath()), before); // nothing written
        EXPECT_TRUE(rig.window->Timer1()->isActive());
    }
}

TEST(SetupDialog, WrongLocatorIsRefusedAndKeepsTheTimerOffUntilASaveSucceeds) {
    SetupRig rig("!NOCALL!");
    const QByteArray before = test::readBytes(rig.iniPath());
    rig.openSetup([&](frmZKR_MUF_Setup &dialog) {
        rig.type("text_Locator", "JO6");
        rig.platform.clearLog();
        dialog.Command_SaveConfig_Click();
        EXPECT_EQ(rig.platform.log(),
                  QStringList({"beep 800 200", "arm centre",
                               R"(msgbox 49 "" "Locator is not correct !" -> 1)"}));
        EXPECT_EQ(rig.child<QLineEdit>("text_Locator")->text(), "");
        EXPECT_TRUE(dialog.isVisible());
        EXPECT_EQ(test::readBytes(rig.iniPath()), before);
        EXPECT_TRUE(rig.state.Busy);
        EXPECT_FALSE(rig.window->Timer1()->isActive());

        rig.type("text_Locator", "jo62qm");
        dialog.Command_SaveConfig_Click();
    });
    EXPECT_FALSE(rig.state.Busy);
    EXPECT_TRUE(rig.window->Timer1()->isActive());
    EXPECT_TRUE(rig.ini().contains("OwnLocator=JO62QM\r\n"));
}

// From a running telnet session (or the web list), with a line already in
// the panes, the user types a call sign and saves.
TEST(SetupDialog, SavingSwitchesTheSourceTheCallSignAsksFor) {
    struct Case {
        const char *name, *startCall, *typed;
        const char *answer; // to the call-sign prompt; none = no prompt
        const char *mode;
        bool panesKept;
        int fontSize;
        const char *iniCall;
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
        SetupRig rig(c.startCall);
        const bool fromTelnet = rig.state.RunMode == "TELNETCLUSTER";
        if (fromTelnet) {
            ASSERT_TRUE(waitFor([&] { return rig.node.logins().size() == 1; }));
        }
        rig.window->workingPane(0).insertColored(QStringLiteral("earlier spot\r\n"), 0);
        rig.window->refreshPanes();
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
        EXPECT_EQ(rig.inputBoxes().size(), c.answer != nullptr ? 1 : 0);
        EXPECT_EQ(rig.state.RunMode, c.mode);
        EXPECT_TRUE(rig.ini().contains(QString("OwnCall=%1\r\n").arg(c.iniCall)));
        EXPECT_EQ(rig.window->findChild<QLabel *>("Label_OwnCall")->text(),
                  QString("CALL ") + c.iniCall);
        const QString pane = rig.window->displayPane(0)->text();
        EXPECT_EQ(pane.contains("earlier spot"), c.panesKept) << pane.toStdString();
        EXPECT_EQ(rig.window->displayPane(0)->font().pointSize(), c.fontSize);
        EXPECT_FALSE(rig.state.Busy);

        const QString mode = c.mode;
        if (mode == "TELNETCLUSTER") {
            const QString login = QString(c.iniCall);
            EXPECT_TRUE(waitFor([&] {
                return rig.node.logins().value(fromTelnet ? 1 : 0) == login;
            })) << rig.node.logins().join(' ').toStdString();
            EXPECT_FALSE(rig.window->Timer1()->isActive());
            EXPECT_EQ(rig.state.column(3), 10); // frequency column of cluster lines
        } else {
            // Leaving the cluster ends its session.
            EXPECT_TRUE(
                waitFor([&] { return !rig.node.hasClient() || !rig.state.Telnet_Connected; }));
            EXPECT_FALSE(rig.state.Telnet_Connected);
        }
        if (mode == "WEBCLUSTER") {
            EXPECT_EQ(rig.window->findChild<QLabel *>("Label_Telnet_Status")->text(),
                      "Listen to " + site::WebClusterBase);
            EXPECT_EQ(rig.state.column(3), 13);
            // The next tick of the refresh timer fetches the list at once.
            EXPECT_TRUE(rig.window->Timer1()->isActive());
            EXPECT_TRUE(waitFor([&] { return rig.web.requestCount("/DxSpots.aspx") == 1; }));
        }
        if (mode == "FILE") {
            EXPECT_EQ(rig.state.OwnCall, "QQ7ZKR");
            EXPECT_TRUE(pane.contains("OH1XYZ")); // replayed
            EXPECT_EQ(rig.platform.log().filter("filedialog").size(), 1);
        }
    }
}

TEST(SetupDialog, ClusterListMarksTheClusterInUseAndAClickedOneIsSavedAndConnected) {
    // The session in use goes nowhere (port 1 is closed); the list offers
    // the node of this machine.
    SetupRig rig("DL1ABC", "off", "GB7OLD", 1);
    ASSERT_TRUE(test::writeBytes(rig.setup().clusterListPath(),
                                 QString("DX-Cluster|Host|Port\r\nGB7AAA|a.example|7300\r\n"
                                         "GB7OLD|127.0.0.1|1\r\nGB7TST|127.0.0.1|%1\r\n")
                                     .arg(rig.node.port())
                                     .toLatin1()));
    auto bold = [](QTreeWidgetItem *item, int column) { return item->font(column).bold(); };
    rig.openSetup([&](frmZKR_MUF_Setup &dialog) {
        QTreeWidget *list = rig.list();
        ASSERT_EQ(list->topLevelItemCount(), 3);
        EXPECT_EQ(list->headerItem()->text(1), "Host");
        EXPECT_EQ(list->columnWidth(0), 127); // 1908, 2958, 1908 twips
        EXPECT_EQ(list->columnWidth(1), 197);
        QTreeWidgetItem *old = list->topLevelItem(1);
        for (int column = 0; column < 3; ++column) {
            EXPECT_EQ(old->foreground(column).color(), QColor(0, 0, 255));
            EXPECT_TRUE(bold(old, column));
            EXPECT_FALSE(bold(list->topLevelItem(0), column));
        }

        dialog.ListView1_ItemClick(list->topLevelItem(2));
        EXPECT_EQ(rig.state.Telnet_Call, "GB7TST");
        EXPECT_EQ(rig.state.Telnet_Port, QString::number(rig.node.port()));
        EXPECT_FALSE(bold(old, 0));
        EXPECT_EQ(old->foreground(0).color(), QColor(0, 0, 0));
        EXPECT_EQ(buttonColour(rig.saveButton()), Green);
        dialog.Command_SaveConfig_Click();
    });
    EXPECT_TRUE(waitFor([&] { return rig.node.logins() == QStringList{"DL1ABC"}; }));
    EXPECT_TRUE(rig.ini().contains(
        QString("Telnet_Call=GB7TST\r\nTelnet_Host=127.0.0.1\r\nTelnet_Port=%1\r\n")
            .arg(rig.node.port())));

    // A list that is gone leaves the rows of the last opening, silently.
    QFile::remove(rig.setup().clusterListPath());
    rig.platform.clearLog();
    rig.openSetup([&](frmZKR_MUF_Setup &dialog) {
        EXPECT_EQ(rig.list()->topLevelItemCount(), 3);
        dialog.Command_ExitwWthoutSave_Click();
    });
    EXPECT_TRUE(rig.platform.messages().isEmpty());
}

// A first start: call and locator are asked for, the dialog opens for a
// cluster, and after the start-up it is shown once more, fresh.
TEST(SetupDialog, FirstRunPicksAClusterAndShowsTheDialogAgain) {
    QTemporaryDir folder;
    LocalClusterServer node;
    LocalHttpServer web; // a download page without news
    ProgramState state;
    ScriptedPlatform platform;
    platform.setApplicationFolder(folder.path());
    platform.setEnvironmentValue(site::DownloadPageUrlVariable, web.url("/download.html"));
    platform.answerInputBox(QString("dl1abc"));
    platform.answerInputBox(QString("JO62QM"));
    test::writeBytes(QDir(folder.path()).filePath("TelnetDXCluster.txt"),
                     QString("DX-Cluster|Host|Port\r\nGB7DJK|gb7djk.dxcluster.net|7300\r\n"
                             "GB7TST|127.0.0.1|%1\r\n")
                         .arg(node.port())
                         .toLatin1());
    frmZKR_MUF window(state, platform);
    frmZKR_MUF_Setup &setup = window.setupWindow();
    auto *list = setup.findChild<QTreeWidget *>("ListView1");
    int sessions = 0;
    setup.setModalSession([&](frmZKR_MUF_Setup &dialog) {
        ++sessions;
        ASSERT_EQ(list->topLevelItemCount(), 2);
        EXPECT_TRUE(list->topLevelItem(0)->font(0).bold()); // the built-in cluster
        dialog.ListView1_ItemClick(list->topLevelItem(1));
        dialog.Command_SaveConfig_Click();
    });
    window.Form_Load();

    EXPECT_EQ(sessions, 1);
    EXPECT_EQ(web.requestCount("/download.html"), 1);
    EXPECT_TRUE(setup.isVisible());
    EXPECT_EQ(setup.findChild<QPushButton *>("Command_ExitwWthoutSave")->text(), "&E X I T");
    EXPECT_TRUE(list->topLevelItem(1)->font(0).bold()); // now the one in use
    EXPECT_FALSE(list->topLevelItem(0)->font(0).bold());
    const QString ini = QString::fromLatin1(test::readBytes(state.IniFilePath));
    EXPECT_TRUE(ini.contains("Telnet_Call=GB7TST\r\n")) << ini.toStdString();
    EXPECT_TRUE(ini.contains("[AutoUpdateCheck]\r\nUpdateCheck=on\r\n"));
    EXPECT_TRUE(waitFor([&] { return node.logins().contains("DL1ABC"); }));
    setup.hide();
}

TEST(SetupDialog, UpdateCheckAtStartUpOnTheBoxAndOnTheButton) {
    LocalHttpServer::Response page;
    page.body = "<html><h2>ZKR_MUF V1.31</h2></html>";
    const QString question = R"(msgbox 36 "" "Version  V1.31  is available !  )"
                             "\r\nDo you want to open the download page in your web browser ?"
                             "\r\n\" -> 7";

    SetupRig rig("DL1ABC", "on");
    // Start-up ran the check before the server knew the page: nothing new.
    EXPECT_EQ(rig.web.requestCount("/download.html"), 1);
    EXPECT_TRUE(rig.platform.log().filter("msgbox").isEmpty());
    rig.web.setResponse("/download.html", page);
    rig.platform.clearLog();
    rig.platform.answerMessageBox(7); // No
    rig.openSetup([&](frmZKR_MUF_Setup &dialog) {
        // Reading the settings again leaves the ticked box, and runs no check.
        EXPECT_EQ(rig.web.requestCount("/download.html"), 1);
        QCheckBox *box = rig.child<QCheckBox>("CheckBox_AutoUpdate");
        box->click();
        EXPECT_TRUE(rig.ini().contains("[AutoUpdateCheck]\r\nUpdateCheck=off"));
        box->click();
        EXPECT_TRUE(rig.ini().contains("[AutoUpdateCheck]\r\nUpdateCheck=on"));
        EXPECT_EQ(rig.platform.log().filter("msgbox"), QStringList{question});

        // The button also says when there is nothing new, and where a
        // page could not be fetched at all.
        page.body = "<h2>ZKR_MUF V1.3</h2>";
        rig.web.setResponse("/download.html", page);
        rig.platform.clearLog();
        dialog.CommandButton_Check_for_Updates_Click();
        rig.state.UpdatePage_Url = "http://127.0.0.1:1/download.html";
        dialog.CommandButton_Check_for_Updates_Click();
        dialog.Command_ExitwWthoutSave_Click();
    });
    const QString noUpdate = R"(msgbox 0 "UpdateCheck" "No updates available. You have the )"
                             R"(latest version !" -> 1)";
    EXPECT_EQ(rig.platform.log().filter("msgbox"),
              QStringList({noUpdate,
                           R"(msgbox 22 "W a r n i n g !" "Can't connect. Make sure url is )"
                           R"(correct or even if host exists." -> 2)",
                           noUpdate}));
    EXPECT_TRUE(rig.platform.log().filter("openurl").isEmpty());
}

} // namespace
} // namespace zkr
