// Reception reports in the window: WSJT-X datagrams over UDP on this
// machine, a decode log from the File menu, the Setup's Sources section.
#include "EsWatchLink.h"
#include "ReportSources.h"
#include "ShellFakes.h"
#include "WsjtxDatagrams.h"

#include <QAction>
#include <QCheckBox>
#include <QLineEdit>
#include <QSignalSpy>
#include <QSpinBox>
#include <QUdpSocket>

#include <algorithm>

namespace zkr {
namespace {

using test::waitFor;

quint16 freeUdpPort() {
    QUdpSocket probe;
    probe.bind(QHostAddress::LocalHost, 0);
    return probe.localPort();
}

// The program with its live sources on: WSJT-X on a free port of this
// machine, PSK Reporter off (and pointed here), no country file.
struct ReportsRig : test::ProgramRig {
    quint16 port = freeUdpPort();
    QUdpSocket sender;

    void start(quint16 wsjtxPort = 0) {
        const QString ini = folder.filePath("zkr_muf.ini");
        LocalClusterServer::writeSettings(folder.path(), node.port());
        Ini_Write("WSJTX", "Port", QString::number(wsjtxPort ? wsjtxPort : port), ini);
        Ini_Write("PSKReporter", "Enabled", "off", ini);
        Ini_Write("PSKReporter", "Host", "127.0.0.1", ini);
        Ini_Write("PSKReporter", "Port", "1", ini);
        window.reports().enableLive();
        window.reports().loadCountries({folder.filePath("no-cty.dat")});
        window.Form_Load();
        send(test::status("WSJT-X", 50313000, "DL1ABC", "JO62QM"));
    }
    void send(const QByteArray &datagram) {
        sender.writeDatagram(datagram, QHostAddress::LocalHost, port);
    }
    void hear(const char *message) {
        const QTime now = QDateTime::currentDateTimeUtc().time();
        send(test::decode("WSJT-X", QTime(now.hour(), now.minute(), now.second()), -12, 1200,
                          message));
    }
    bool watched(const QString &call) {
        const auto clouds = window.esWatch().watch().clouds();
        return std::any_of(clouds.begin(), clouds.end(), [&call](const WatchCloud *cloud) {
            return std::any_of(cloud->spots.begin(), cloud->spots.end(),
                               [&call](const WatchSpot &spot) { return spot.heard == call; });
        });
    }
    QString where(const QString &typed) {
        auto *box = child<QLineEdit>("text_WhereCall");
        box->clear();
        QTest::keyClicks(box, typed);
        QTest::keyClick(box, Qt::Key_Return);
        return label("Label_WhereAnswer");
    }
};

// Each decode teaches the book, reaches the watch when it is an Es hop and
// the Reports pane when its cloud is in range, and goes out to the history;
// the where box then answers for the call typed, not the last one heard.
TEST(ReportsWindow, EveryDecodeReachesBookWatchPaneAndHistory) {
    const struct {
        const char *message, *call, *where;
        bool shown, watched;
    } cases[] = {
        {"CQ EA7ABC IM76", "EA7ABC", "EA7ABC: IM76, from a WSJT-X/JTDX decode", true, true},
        {"CQ SP2ABC JO93", "SP2ABC", "SP2ABC: JO93, from a WSJT-X/JTDX decode", true, false},
        {"CQ PY2XYZ GG66", "PY2XYZ", "PY2XYZ: GG66, from a WSJT-X/JTDX decode", false, false},
    };
    ReportsRig rig;
    rig.start();
    QSignalSpy evaluated(&rig.window.reports(), &ReportSources::reportEvaluated);
    for (const auto &c : cases) {
        SCOPED_TRACE(c.message);
        const qsizetype before = evaluated.size();
        rig.hear(c.message);
        ASSERT_TRUE(waitFor([&] { return evaluated.size() == before + 1; }));
        EXPECT_EQ(evaluated.last().at(0).value<Reception>().tx.call, c.call);
        QTest::qWait(1); // the pane is committed on the next turn
        EXPECT_EQ(rig.window.reportsPane()->text().contains(c.call), c.shown);
        EXPECT_EQ(rig.watched(c.call), c.watched);
    }
    for (const auto &c : cases) {
        EXPECT_TRUE(rig.where(QString(c.call).toLower()).startsWith(c.where)) << c.call;
    }
    EXPECT_TRUE(rig.where("dl1abc").startsWith("DL1ABC: JO62QM, from the own station in Setup"));
    EXPECT_EQ(rig.where("DL9XYZ"), "DL9XYZ: not known");
}

// A log of another day plays on its own times (a wall clock would drop it
// as too old); the next live decode puts the watch back on the wall clock.
TEST(ReportsWindow, DecodeLogReplaysOnItsOwnTimesThenLiveOnTheWallClock) {
    ReportsRig rig;
    rig.start();
    const QString log = rig.folder.filePath("ALL.TXT");
    test::writeBytes(log, "230612_183015    50.313 Rx FT8    -12  0.2 1234 CQ EA7ABC IM76\n"
                          "230612_183030    50.313 Rx FT8    -10  0.2  934 CQ PY2XYZ GG66\n");
    rig.platform.answerFileDialog(log);
    rig.child<QAction>("openDecodeLogAction")->trigger();
    ASSERT_TRUE(waitFor([&] { return !rig.window.reports().isReplayingLog(); }));
    EXPECT_TRUE(waitFor([&] {
        return rig.label("Label_ReportNotice") == "Replayed ALL.TXT: 2 reports, 1 in range";
    }));
    EXPECT_TRUE(rig.watched("EA7ABC"));
    EXPECT_TRUE(rig.window.reportsPane()->text().startsWith("1830Z "));

    rig.hear("CQ SP2ABC JO93");
    ASSERT_TRUE(waitFor([&] { return rig.window.reportsPane()->text().contains("SP2ABC"); }));
    EXPECT_FALSE(rig.window.esWatch().watch().usesSpotTime());
}

// Every source field is saved; a save restarts only the source whose
// settings changed, so a busy port is said once, whatever else is saved.
TEST(ReportsWindow, SetupSavesTheSourcesAndRestartsOnlyWhatChanged) {
    ReportsRig rig;
    QUdpSocket other; // another program on the port
    ASSERT_TRUE(other.bind(QHostAddress::LocalHost, rig.port));
    QStringList told; // by the WSJT-X listener
    QObject::connect(&rig.window.reports(), &ReportSources::statusChanged,
                     [&](ReportSources::Source source, const QString &text) {
                         if (source == ReportSources::Source::Wsjtx) {
                             told << text;
                         }
                     });
    rig.start();
    ASSERT_EQ(told.filter("is in use by another program").size(), 1);
    EXPECT_TRUE(rig.label("Label_WsjtxStatus").contains("in use"));

    const quint16 free = freeUdpPort();
    const struct {
        const char *field, *typed; // a check box is clicked
        QString saved;             // a piece of the settings file after the save
        bool restarted;
    } edits[] = {
        {"text_PskBands", "6m, 2m",
         "[PSKReporter]\r\nEnabled=off\r\nHost=127.0.0.1\r\nPort=1\r\n"
         "Bands=6m,2m\r\nAllReports=off\r\n",
         false},
        {"CheckBox_PskAllReports", nullptr, "AllReports=on\r\n", false},
        {"text_WsjtxGroup", "239.255.0.1", "MulticastGroup=239.255.0.1\r\n", true},
        {"spin_WsjtxPort", nullptr,
         QString("[WSJTX]\r\nPort=%1\r\nEnabled=on\r\nAddress=127.0.0.1\r\nMulticastGroup=\r\n")
             .arg(free),
         true},
    };
    for (const auto &e : edits) {
        SCOPED_TRACE(e.field);
        const qsizetype before = told.size();
        rig.openSetup([&](frmZKR_MUF_Setup &dialog) {
            EXPECT_EQ(dialog.findChild<QLabel *>("Label_Status_Wsjtx")->text(), told.last());
            if (auto *spin = dialog.findChild<QSpinBox *>(e.field)) {
                dialog.findChild<QLineEdit *>("text_WsjtxGroup")->clear();
                spin->setValue(free);
            } else if (auto *edit = dialog.findChild<QLineEdit *>(e.field)) {
                edit->clear();
                QTest::keyClicks(edit, e.typed);
            } else {
                dialog.findChild<QCheckBox *>(e.field)->click();
            }
            dialog.Command_SaveConfig_Click();
        });
        EXPECT_TRUE(rig.ini().contains(e.saved)) << rig.ini().toStdString();
        EXPECT_EQ(told.size() > before, e.restarted);
    }
    EXPECT_TRUE(rig.window.reports().wsjtx().isListening());
    EXPECT_EQ(rig.window.reports().wsjtx().localPort(), free);
}

} // namespace
} // namespace zkr
