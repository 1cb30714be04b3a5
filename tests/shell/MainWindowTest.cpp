// The main window and the windows it opens, in a program started by the test.
#include "EsWatchLink.h"
#include "FrmTelnet.h"
#include "ProgramEnded.h"
#include "ShellFakes.h"

#include <QCheckBox>
#include <QDir>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QSignalSpy>
#include <QTabWidget>
#include <QTreeWidget>

namespace zkr {
namespace {

using test::waitFor;

// Font sizes and cleared panes per mode are checked where the setup switches
// modes.
TEST(MainWindow, LayoutPassesFollowTheRunMode) {
    const struct {
        const char *mode;
        bool second, web, timerOn; // web: the status and work labels are shown
        int tab;
        bool fileMode;
        bool fetches; // the web page is asked for at once
    } cases[] = {
        {"WEBCLUSTER", false, true, false, 2, false, false},
        {"TELNETCLUSTER", true, false, false, 0, false, false},
        {"FILE", false, false, false, 0, true, false},
        {"webcluster", true, true, true, 2, false, true}, // last: its fetch goes on
    };
    test::ProgramRig rig;
    frmZKR_MUF &window = rig.window;
    auto *label2 = rig.child<QLabel>("Label2");
    const auto filters = window.centralWidget()->findChildren<QCheckBox *>();
    for (const auto &c : cases) {
        SCOPED_TRACE(c.mode);
        rig.state.RunMode = c.mode;
        rig.state.FileMode_Active = false;
        label2->setVisible(true);
        rig.child<QLabel>("Label_Telnet_Status")->clear();
        window.SSTab1()->setCurrentIndex(2);
        window.Timer1()->start();
        if (c.second) {
            window.layoutByMode();
        } else {
            window.Timer1()->stop();
            window.layoutInitial();
        }
        for (QCheckBox *filter : filters) {
            EXPECT_TRUE(filter->isHidden() && !filter->isEnabled() && !filter->isChecked());
        }
        EXPECT_EQ(!rig.child("Label_Telnet_Status")->isHidden(), c.web);
        EXPECT_EQ(rig.label("Label_Telnet_Status") == "Listen to " + site::WebClusterBase, c.web);
        EXPECT_EQ(window.Timer1()->isActive(), c.timerOn);
        EXPECT_EQ(!label2->isHidden(), c.web);
        EXPECT_EQ(window.SSTab1()->currentIndex(), c.tab);
        EXPECT_EQ(rig.state.FileMode_Active, c.fileMode);
        EXPECT_EQ(window.sources().web().isBusy(), c.fetches);
    }
}

TEST(MainWindow, ExitAndClosingTheWindowBothSavePositionAndTab) {
    for (const bool byFrame : {false, true}) {
        test::ProgramRig rig;
        rig.state.IniFilePath = rig.folder.filePath("zkr_muf.ini");
        rig.window.moveMainWindow({123, 45}); // what start-up restores is what is saved
        rig.window.SSTab1()->setCurrentIndex(2);
        if (byFrame) {
            EXPECT_THROW(rig.window.close(), ProgramEnded);
        } else {
            EXPECT_THROW(rig.window.Command_End_Click(), ProgramEnded);
        }
        EXPECT_EQ(rig.ini(), "[Position]\r\nLeft=123\r\nTop=45\r\nSSTAB=2\r\n");
        EXPECT_TRUE(rig.state.Busy && rig.window.isHidden());
    }
    // However long the status, the window fits a 1,024-pixel screen; the tooltip has it whole.
    test::ProgramRig rig;
    const QString longStatus = "Reconnecting in 300 s (attempt 12) to " + QString(200, 'X');
    rig.window.setStatusLabel(longStatus, 0xFFFFFF);
    rig.window.showLastSpot(QDateTime::currentDateTimeUtc());
    EXPECT_LE(rig.window.minimumSizeHint().width(), 1024);
    EXPECT_EQ(rig.child("Label_Telnet_Status")->toolTip(), longStatus);
}

// A good page, the same page again, an error page, then the good page.
TEST(WebSource, EvaluatesNewPagesOnlyAndRecoversAfterAnErrorPage) {
    test::ProgramRig rig;
    const QByteArray good = test::spotPage("      ");
    rig.answer("/DxSpots.aspx", good);
    rig.start("!NOCALL!"); // start-up in web mode runs the first evaluation
    ASSERT_TRUE(rig.webIdle());
    EXPECT_EQ(rig.state.RunMode, "WEBCLUSTER");
    EXPECT_TRUE(rig.pane(2).contains("Sorry - no Es-spots found !"));
    EXPECT_FALSE(rig.state.Web_Offline || rig.state.FirstFetch);

    rig.window.workingPane(0).clear(); // an evaluation would fill it again
    rig.window.refreshPanes();
    rig.window.sources().Evaluate_SpotPage();
    ASSERT_TRUE(rig.webIdle());
    EXPECT_EQ(rig.pane(0), "");
    EXPECT_TRUE(rig.state.FirstFetch);
    EXPECT_EQ(rig.web.requestCount("/DxSpots.aspx"), 2);

    rig.answer("/DxSpots.aspx", "<html><h1>Server Error</h1></html>", 500);
    rig.window.sources().Evaluate_SpotPage();
    ASSERT_TRUE(rig.webIdle());
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(rig.pane(i), "The Webserver may be down !\r\n") << i;
    }
    EXPECT_EQ(rig.label("Label2"), "OFFLINE !");

    rig.answer("/DxSpots.aspx", good);
    rig.window.sources().Evaluate_SpotPage();
    ASSERT_TRUE(rig.webIdle());
    EXPECT_TRUE(rig.pane(0).contains("OH1XYZ"));
    EXPECT_EQ(rig.platform.messages(),
              QStringList()); // no fetch went anywhere else
}

// The program's console, loaded as the program loads it.
struct ConsoleRig : test::ProgramRig {
    FrmTelnet *console = &window.sources().console();

    ConsoleRig() {
        state.Telnet_DebugFile = "Telnet_Debug_Datei.txt";
        state.Folders = ProgramFolders::find(platform);
    }
    // The program in telnet mode, logged in at the cluster of this machine.
    void startProgram() {
        start();
        ASSERT_TRUE(
            waitFor([&] { return label("Label_Telnet_Status").startsWith(" Connected to"); }));
    }
    template <class T = QWidget> T *control(const char *name) {
        return console->findChild<T *>(QLatin1String(name));
    }
    QString text(const char *name) { return control(name)->property("text").toString(); }
    void click(const char *name) { control<QPushButton>(name)->click(); }
};

// The record as single bytes to the file, every line end into the pane; the
// data field filled when shown.
TEST(Console, RecordFileRecordPaneAndDataField) {
    ConsoleRig rig;
    rig.state.Console_Lines = {"",
                               "login: ", QString::fromLatin1("DX de G4ABC: 50110.0 S\xe9\r\n")};
    const QByteArray once = "\r\nlogin: \r\nDX de G4ABC: 50110.0 S\xe9\r\n\r\n";
    rig.click("CMD_Debug_Datei");
    rig.click("CMD_Debug_Datei");
    EXPECT_EQ(test::readBytes(rig.folder.filePath("Telnet_Debug_Datei.txt")), once + once);
    EXPECT_TRUE(rig.platform.messages().isEmpty());

    // A folder in the file's place cannot be written: reported, not lost.
    QFile::remove(rig.folder.filePath("Telnet_Debug_Datei.txt"));
    ASSERT_TRUE(QDir(rig.folder.path()).mkdir("Telnet_Debug_Datei.txt"));
    rig.click("CMD_Debug_Datei");
    ASSERT_EQ(rig.platform.messages().size(), 1);
    EXPECT_TRUE(rig.platform.messages()[0].startsWith("Run-time error"));

    auto *pane = rig.control<QPlainTextEdit>("RichTextBox1");
    rig.console->appendRecord("Welcome\r\n\r\nlogin: ");
    rig.console->appendRecord("DL1ABC\x07\r\nDX de\rDX de\n"); // a bell shows as nothing
    EXPECT_EQ(pane->toPlainText(), "Welcome\n\nlogin: DL1ABC\nDX de\nDX de\n");

    // A hidden console shows the last spot line when shown, unless refilled
    // since.
    rig.console->setDataField("SP9HWY: 50110.0 OH1XYZ");
    rig.console->show();
    EXPECT_EQ(rig.text("txtdata"), "SP9HWY: 50110.0 OH1XYZ");
    rig.console->hide();
    rig.console->setDataField("SP9HWY: 50130.0 OH3XYZ");
    rig.console->setFields("127.0.0.2", "8000", "DL2XYZ");
    rig.console->show();
    EXPECT_EQ(rig.text("txtdata"), "DL2XYZ");
}

TEST(Console, FollowsTheSessionSendsCommandsAndSwitchesModes) {
    ConsoleRig rig;
    rig.startProgram();
    EXPECT_FALSE(rig.console->isVisible()); // loaded, not shown
    EXPECT_EQ(rig.text("txtport"), QString::number(rig.node.port()));
    EXPECT_EQ(rig.text("Label6"), " Connected");
    EXPECT_TRUE(rig.control<QPlainTextEdit>("RichTextBox1")->toPlainText().contains("dxspider >"));
    // Loaded again while connected, it says so in its title.
    EXPECT_EQ(FrmTelnet(rig.state, rig.platform, rig.window.sources()).windowTitle(), "Connected");

    rig.click("Command1");
    EXPECT_TRUE(waitFor([&] { return rig.node.received() == "SH/FDX/20 on vhf\r\n"; }));

    // A recorded file switches to the file mode, the session left open.
    const QString path = rig.folder.filePath("recorded.txt");
    test::writeBytes(path, "\r\nDX de SP9HWY:    50110.0  OH1XYZ       JO90JR<ES>KP20          "
                           "       1712Z\r\n\r\n");
    rig.window.Timer1()->start(); // what the replay must switch off
    rig.platform.answerFileDialog(path);
    rig.click("CMD_Debug_Datei_laden");
    EXPECT_EQ(rig.state.RunMode, "FILE");
    EXPECT_FALSE(rig.window.Timer1()->isActive());
    EXPECT_TRUE(waitFor([&] { return rig.pane(0).contains("OH1XYZ"); }));
    EXPECT_TRUE(rig.state.Telnet_Connected);

    rig.node.closeClients();
    EXPECT_TRUE(waitFor([&] { return rig.text("Label6") == "not connected"; }));
    // Connect leaves any mode but the web mode (compared exactly) for the
    // cluster, and starts again.
    for (const char *mode : {"FILE", "webcluster"}) {
        const qsizetype logins = rig.node.logins().size();
        rig.state.RunMode = mode;
        rig.click("Connect_Manuell");
        EXPECT_EQ(rig.state.RunMode, "TELNETCLUSTER") << mode;
        EXPECT_TRUE(waitFor([&] { return rig.node.logins().size() == logins + 1; })) << mode;
    }
    rig.state.RunMode = "WEBCLUSTER";
    rig.click("Connect_Manuell");
    EXPECT_EQ(rig.state.RunMode, "WEBCLUSTER");
    EXPECT_TRUE(rig.window.Timer1()->isActive());
    EXPECT_TRUE(waitFor([&] { return rig.web.requestCount("/DxSpots.aspx") == 1; }));
}

struct SetupRig : test::ProgramRig {
    frmZKR_MUF_Setup &setup() { return window.setupWindow(); }
    template <class T> T *field(const char *name) {
        return setup().findChild<T *>(QLatin1String(name));
    }
    QPushButton *button(const char *name) { return field<QPushButton>(name); }
    bool green(const char *name) {
        return button(name)->palette().color(QPalette::Button) == QColor(0, 255, 0);
    }
    void type(const char *name, const QString &text) {
        field<QLineEdit>(name)->clear();
        QTest::keyClicks(field<QLineEdit>(name), text);
    }
};

// The open dialog holds the web refresh timer until it is left with valid
// entries.
TEST(SetupDialog, AnEditTurnsBothButtonsGreenAndAWrongLocatorIsRefused) {
    SetupRig rig;
    rig.start("!NOCALL!");
    const QString before = rig.ini();
    rig.openSetup([&](frmZKR_MUF_Setup &) {
        EXPECT_FALSE(rig.button("Command_SaveConfig")->isEnabled() ||
                     rig.green("Command_SaveConfig"));
        rig.type("text_Call", "!NOCALL!");
        EXPECT_TRUE(rig.button("Command_SaveConfig")->isEnabled());
        EXPECT_TRUE(rig.green("Command_SaveConfig") && rig.green("Command_ExitwWthoutSave"));
        rig.button("Command_ExitwWthoutSave")->click();
    });
    EXPECT_TRUE(!rig.setup().isVisible() && rig.window.Timer1()->isActive());

    rig.openSetup([&](frmZKR_MUF_Setup &dialog) {
        EXPECT_FALSE(rig.window.Timer1()->isActive());
        rig.type("text_Locator", "JO6");
        rig.platform.clearLog();
        dialog.Command_SaveConfig_Click();
        EXPECT_EQ(rig.platform.log(),
                  QStringList({"beep 800 200", "arm centre",
                               "msgbox 49 \"\" \"Locator is not correct !\r\n\r\n\"JO6\" has 3 "
                               "characters; a locator has 4 (JO62) or 6 (JO62QM).\" -> 1"}));
        EXPECT_EQ(rig.field<QLineEdit>("text_Locator")->text(), "");
        EXPECT_TRUE(dialog.isVisible() && rig.state.Busy);
        EXPECT_TRUE(rig.ini() == before && !rig.window.Timer1()->isActive());
        rig.type("text_Locator", "jo62qm");
        dialog.Command_SaveConfig_Click();
    });
    EXPECT_TRUE(!rig.state.Busy && rig.window.Timer1()->isActive());
    EXPECT_TRUE(rig.ini().contains("OwnLocator=JO62QM\r\n"));
}

// With a spot in the panes, the user types a call sign and saves.
TEST(SetupDialog, SavingSwitchesToTheSourceTheCallSignAsksFor) {
    const struct {
        const char *name, *startCall, *typed;
        const char *answer; // to the call-sign prompt; none = no prompt
        QString mode;
        bool panesKept;
        int fontSize;
        const char *call;
    } cases[] = {
        {"unchanged call", "DL1ABC", "dl1abc", nullptr, "TELNETCLUSTER", true, 10, "DL1ABC"},
        {"new call", "DL1ABC", "DL2XYZ", "dl2xyz", "TELNETCLUSTER", true, 10, "DL2XYZ"},
        {"web to telnet", "!NOCALL!", "DL1ABC", "DL1ABC", "TELNETCLUSTER", false, 10, "DL1ABC"},
        {"web only", "DL1ABC", "!nocall!", nullptr, "WEBCLUSTER", false, 8, "!NOCALL!"},
        {"file", "DL1ABC", "!file!", nullptr, "FILE", false, 10, "DL1ABC"}, // the call stays
    };
    for (const auto &c : cases) {
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

        EXPECT_EQ(rig.platform.log().filter("inputbox").size(), c.answer != nullptr ? 1 : 0);
        EXPECT_EQ(rig.state.RunMode, c.mode);
        EXPECT_TRUE(rig.ini().contains(QString("OwnCall=%1\r\n").arg(c.call)));
        EXPECT_EQ(rig.label("Label_OwnCall"), QString("CALL ") + c.call);
        EXPECT_EQ(rig.pane(0).contains("earlier spot"), c.panesKept) << rig.pane(0).toStdString();
        EXPECT_EQ(rig.window.displayPane(0)->font().pointSize(), c.fontSize);
        EXPECT_EQ(rig.window.Timer1()->isActive(), c.mode == "WEBCLUSTER");
        if (c.mode == "TELNETCLUSTER") {
            EXPECT_TRUE(waitFor([&] { return rig.node.logins().value(loginsBefore) == c.call; }));
        } else {
            EXPECT_FALSE(rig.state.Telnet_Connected); // leaving the cluster ends its session
        }
        if (c.mode == "WEBCLUSTER") { // the next tick of the refresh timer fetches the list
            EXPECT_TRUE(waitFor([&] { return rig.web.requestCount("/DxSpots.aspx") == 1; }));
        }
        if (c.mode == "FILE") {
            EXPECT_TRUE(waitFor([&] { return rig.pane(0).contains("OH1XYZ"); })); // replayed
        }
    }
}

// A first start opens the dialog on the cluster list once, and connects once.
TEST(SetupDialog, FirstRunPicksAClusterFromTheListOnce) {
    SetupRig rig;
    test::writeBytes(rig.folder.filePath("TelnetDXCluster.txt"),
                     QString("DX-Cluster|Host|Port\nGB7DJK|gb7djk.dxcluster.net|7300\n"
                             "GB7TST|127.0.0.1|%1\n") // edited on Linux
                         .arg(rig.node.port())
                         .toLatin1());
    rig.platform.answerInputBox(QString("dl1abc"));
    rig.platform.answerInputBox(QString("JO62QM"));
    auto *list = rig.field<QTreeWidget>("ListView1");
    auto marked = [list](int row) { return list->topLevelItem(row)->font(2).bold(); };
    int sessions = 0;
    rig.setup().setModalSession([&](frmZKR_MUF_Setup &dialog) {
        ++sessions;
        ASSERT_EQ(list->topLevelItemCount(), 2);
        EXPECT_TRUE(marked(0)); // the built-in cluster
        EXPECT_FALSE(rig.field<QLabel>("Label_ClusterList")->isVisibleTo(&dialog));
        dialog.ListView1_ItemClick(list->topLevelItem(1));
        EXPECT_TRUE(!marked(0) && rig.green("Command_SaveConfig"));
        dialog.Command_SaveConfig_Click();
    });
    rig.window.Form_Load();
    rig.window.show();

    EXPECT_EQ(sessions, 1);
    EXPECT_FALSE(rig.setup().isVisible());
    EXPECT_TRUE(rig.ini().contains(
        QString("Telnet_Call=GB7TST\r\nTelnet_Host=127.0.0.1\r\nTelnet_Port=%1\r\n")
            .arg(rig.node.port())));
    EXPECT_TRUE(rig.ini().contains("[AutoUpdateCheck]\r\nUpdateCheck=off\r\n"));
    EXPECT_TRUE(waitFor([&] { return rig.node.logins() == QStringList{"DL1ABC"}; }));
    EXPECT_TRUE(
        waitFor([&] { return rig.label("Label_Telnet_Status").startsWith("Settings in "); }));
    EXPECT_TRUE(rig.platform.messages().isEmpty());
}

// The update box is stored at once and checks at the next start, in the
// background: a failure there is only said in the status; "Check now" asks
// the page (what it says is tested with the check). The Es watch boxes are
// saved with the rest, and the watch follows.
TEST(SetupDialog, UpdateCheckAndWatchBoxesAreStoredAndTakeEffect) {
    SetupRig rig;
    rig.start();
    rig.openSetup([&](frmZKR_MUF_Setup &dialog) {
        for (const char *stored : {"on", "off"}) {
            rig.field<QCheckBox>("CheckBox_AutoUpdate")->click();
            EXPECT_TRUE(
                rig.ini().contains(QString("[AutoUpdateCheck]\r\nUpdateCheck=%1\r\n").arg(stored)));
        }
        EXPECT_EQ(rig.web.requestCount("/download.html"), 0);
        dialog.CommandButton_Check_for_Updates_Click();
        EXPECT_TRUE(waitFor([&] { return rig.platform.messages().size() == 1; }));
        EXPECT_EQ(dialog.watchSettings(), WatchSettings()); // 144 MHz only
        rig.field<QCheckBox>("CheckBox_EsWatch0")->click(); // 6 m
        rig.field<QCheckBox>("CheckBox_EsWatch6")->click(); // sound
        dialog.Command_SaveConfig_Click();
    });
    EXPECT_TRUE(rig.ini().contains("[EsWatch]\r\nBand50=on\r\nBand70=off\r\nBand144=on\r\n"))
        << rig.ini().toStdString();
    EXPECT_TRUE(rig.ini().contains("Sound=off"));
    EXPECT_TRUE(rig.window.esWatch().watch().settings().band50);
    EXPECT_FALSE(rig.window.esWatch().watch().settings().sound);

    SetupRig again;
    again.platform.setEnvironmentValue(site::DownloadPageUrlVariable,
                                       "http://127.0.0.1:1/download.html");
    again.start("DL1ABC", "on");
    again.window.show();
    EXPECT_TRUE(waitFor([&] {
        return again.label("Label_Telnet_Status") == "Update check: no answer from 127.0.0.1";
    }));
    EXPECT_TRUE(again.platform.messages().isEmpty());
}

// A live 2 m Es spot near the own station: alerts through the platform,
// the strip names the cloud, the Map tab follows the four pane tabs without
// disturbing them, and a click on its marker selects the spot in All.
TEST(EsWatchWindow, AlertStripMapAndSelectionInTheAllPane) {
    SetupRig rig;
    rig.platform.setNotificationsAvailable(false);
    rig.start();
    ASSERT_TRUE(waitFor([&] { return rig.node.logins().size() == 1; }));
    const QString now = QDateTime::currentDateTimeUtc().toString("HHmm");
    rig.node.send(("DX de S57TW:    144174.0  IK0FTA       JO62QM ES IN80        "
                   "         " +
                   now + "Z\r\n")
                      .toLatin1());
    ASSERT_TRUE(waitFor([&] { return rig.platform.log().filter("notify").size() == 3; }));
    EXPECT_TRUE(rig.platform.log().filter("notify")[2].contains("\"confirmed via JN26"));
    EsWatchLink &link = rig.window.esWatch();
    EXPECT_TRUE(link.strip().text().startsWith("ALERT confirmed via JN26"))
        << link.strip().text().toStdString();
    EXPECT_EQ(link.strip().background(), 0xC000C0u);

    QTabWidget *tabs = rig.window.SSTab1();
    ASSERT_EQ(tabs->count(), 6); // the panes, Map, Reports
    tabs->setCurrentIndex(frmZKR_MUF::MapTab);
    rig.platform.setClipboardText("kept");
    rig.window.Copy_Click();
    EXPECT_EQ(rig.platform.clipboardText(), "kept");

    // Another line on top: the spot is the second line of All.
    rig.window.workingPane(0).insertColored(QStringLiteral("newer line\r\n"), 0);
    rig.window.refreshPanes();
    EsMapView &map = link.map();
    map.resize(800, 600);
    QSignalSpy chosen(&map, &EsMapView::spotChosen);
    const WatchCloud *cloud = link.watch().bestCloud();
    ASSERT_NE(cloud, nullptr);
    const QPoint marker = map.markerPixel(*cloud).toPoint();
    EXPECT_EQ(map.cloudAt(marker + QPoint(3, 3)), cloud);
    EXPECT_EQ(map.cloudAt(marker + QPoint(40, 0)), nullptr);
    QTest::mouseClick(&map, Qt::LeftButton, {}, marker);
    ASSERT_EQ(chosen.size(), 1);
    EXPECT_EQ(tabs->currentIndex(), 0);
    EXPECT_EQ(rig.window.displayPane(0)->selectedLine(), 1);
    rig.window.workingPane(0).insertColored(QStringLiteral("newest line\r\n"), 0);
    rig.window.refreshPanes();
    EXPECT_EQ(rig.window.displayPane(0)->selectedLine(), 2); // stays on the spot
}

// A square set in Setup is its centre for the next Es spot; without a locator
// spots print without results and the label says so. Neither raises a box.
TEST(SetupDialog, OwnLocatorOfASquareComputesAndNoneLeavesResultsOut) {
    const struct {
        const char *typed; // in Setup; nullptr: the first start's prompt was cancelled
        const char *label, *results;
    } cases[] = {{"jo62 ", "LOC JO62", "MUF= 64MHz@JO96  FOT= 51MHz -> KP20 AZ= 36"},
                 {nullptr, "Set your locator in Setup", ""}};
    for (const auto &c : cases) {
        SetupRig rig;
        LocalClusterServer::writeSettings(rig.folder.path(), rig.node.port());
        Ini_Write("Locator", "OwnLocator", "", rig.folder.filePath("zkr_muf.ini"));
        rig.window.Form_Load();
        ASSERT_TRUE(waitFor([&] { return rig.node.logins().size() == 1; }));
        if (c.typed != nullptr) { // saving logs in anew
            rig.openSetup([&](frmZKR_MUF_Setup &dialog) {
                rig.type("text_Locator", c.typed);
                dialog.Command_SaveConfig_Click();
            });
            ASSERT_TRUE(waitFor([&] { return rig.node.logins().size() == 2; }));
        }
        rig.node.send("DX de SP9HWY:    50150.0  OH1XYZ       JO62QM<ES>KP20                 "
                      "1712Z\r\n");
        ASSERT_TRUE(waitFor([&] { return rig.pane(0).contains("OH1XYZ"); }));
        EXPECT_TRUE(rig.pane(3).contains(c.results)) << rig.pane(3).toStdString();
        EXPECT_EQ(rig.pane(3).contains("MUF="), c.typed != nullptr);
        EXPECT_EQ(rig.label("Label_OwnLocator"), c.label);
        EXPECT_EQ(rig.platform.messages(), QStringList());
    }
}

} // namespace
} // namespace zkr
