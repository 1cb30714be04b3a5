#include "EsWatchLink.h"
#include "HistoryDatabase.h"
#include "HistorySpots.h"
#include "QtPlatform.h"
#include "ReportSources.h"
#include "ShellFakes.h"
#include "SpotStore.h"

#include <QAction>
#include <QMenu>

#include <memory>

using namespace zkr;
using namespace zkr::test;

namespace {

// Spot `i` of the mix, sent this minute, so that the watch counts it.
QString spotLine(int i) {
    static const QString now = QDateTime::currentDateTimeUtc().toString(QStringLiteral("HHmm"));
    return historySpot(i, {}).line.chopped(5) + now + "Z";
}

QByteArray spotLines(int from, int count) {
    QByteArray bytes;
    for (int i = from; i < from + count; ++i) {
        bytes += spotLine(i).toLatin1().prepend("DX de ") + "\r\n";
    }
    return bytes;
}

// The program with its history in `data`, replaying nothing, so that only
// the spots a test feeds reach the panes.
std::unique_ptr<ProgramRig> startWithHistory(const QString &data) {
    auto rig = std::make_unique<ProgramRig>();
    rig->platform.setUserFolder(UserFolder::Data, data);
    rig->platform.setCommandLine("/FILE");
    rig->window.sources().enableHistory();
    rig->start();
    return rig;
}

} // namespace

// A decode at the own station over one Es hop: EA7ABC in IM76 heard in JO62QM.
// On 2 m it confirms the band, which the watch announces by default.
Reception decodeOf(const char *call, int secondsAgo, double frequencyMhz = 50.3142) {
    Reception report;
    report.time = QDateTime::currentDateTimeUtc().addSecs(-secondsAgo);
    report.time = report.time.addMSecs(-report.time.time().msec());
    report.frequencyMhz = frequencyMhz;
    report.mode = "FT8";
    report.tx = {call, "IM76"};
    report.rx = {"DL1ABC", "JO62QM"};
    report.atOwnStation = true;
    Evaluate_Reception(report, "JO62QM");
    return report;
}

TEST(HistoryWindowTest, RestartShowsWhatWasStoredAndLiveSpotsOnTop) {
    QTemporaryDir data;
    std::vector<QStringList> before; // the panes as stored
    QString shown;                   // the All pane on screen
    std::size_t clouds = 0;
    {
        auto first = startWithHistory(data.path());
        first->window.sources().applyAnalysisSettings(); // no file chosen: no settings yet
        Q_EMIT first->window.reports().wsjtx().reception(decodeOf("EA7ABC", 60, 144.174));
        first->window.sources().session().feed().receive(spotLines(0, 40));
        ASSERT_TRUE(waitFor([&] { return first->window.workingPane(0).lineCount() >= 40; }));
        for (int i = 0; i < 4; ++i) {
            before.push_back(paneLines(first->window.workingPane(i)));
        }
        shown = first->pane(0);
        clouds = first->window.esWatch().watch().clouds().size();
        EXPECT_GT(first->platform.log().filter("notify").size(), 0);
        first->window.closeHistory(); // as the program does on its way out
    }
    ASSERT_FALSE(before[3].isEmpty()); // the Es pane got spots too
    auto second = startWithHistory(data.path());
    // A decode heard while the history is read goes above the stored one.
    Q_EMIT second->window.reports().wsjtx().reception(decodeOf("EA5XYZ", 0));
    ASSERT_TRUE(waitFor([&] { return second->pane(0) == shown; })) << second->pane(0).toStdString();
    ASSERT_TRUE(waitFor([&] {
        return second->window.reportsPane()->text().count("> DL1ABC") == 2;
    })) << second->window.reportsPane()->text().toStdString();
    EXPECT_TRUE(second->window.reportsPane()->text().indexOf("EA5XYZ") <
                second->window.reportsPane()->text().indexOf("EA7ABC"));
    EXPECT_TRUE(second->window.reports().whereIs("EA7ABC").startsWith("EA7ABC: IM76"))
        << second->window.reports().whereIs("EA7ABC").toStdString();
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(paneLines(second->window.workingPane(i)), before[std::size_t(i)]) << "pane " << i;
    }
    ASSERT_GT(clouds, 0u);
    EXPECT_EQ(second->window.esWatch().watch().clouds().size(), clouds); // the map's clouds too
    EXPECT_EQ(second->platform.log().filter("notify"), QStringList());   // not their alerts
    second->window.sources().session().feed().receive(spotLines(40, 1));
    ASSERT_TRUE(waitFor([&] { return second->window.workingPane(0).lineCount() == 41; }));
    EXPECT_TRUE(second->pane(0).startsWith(spotLine(40)))
        << second->pane(0).toStdString();
    EXPECT_TRUE(second->pane(0).endsWith(shown)) << second->pane(0).toStdString();
}

TEST(HistoryWindowTest, HistoryInUseIsSaidOnceAndSpotsStillShow) {
    QTemporaryDir data;
    HistoryDatabase other; // a first program holds the file
    ASSERT_TRUE(other.open(data.filePath("history.sqlite"), HistoryDatabase::Access::Writer));
    const QByteArray before = readBytes(data.filePath("history.sqlite"));
    auto rig = startWithHistory(data.path());
    ASSERT_TRUE(waitFor([&] { return rig->label("Label_Telnet_Status").contains("in use"); }));
    EXPECT_TRUE(rig->label("Label_Telnet_Status").startsWith("Spot history off: "));
    rig->window.sources().session().feed().receive(spotLines(0, 3));
    ASSERT_TRUE(waitFor([&] { return rig->window.workingPane(0).lineCount() == 3; }));
    EXPECT_EQ(other.count(), 0);
    EXPECT_EQ(readBytes(data.filePath("history.sqlite")), before);
}

TEST(HistoryWindowTest, PaneMenuExportsTheHistoryAsCsv) {
    QTemporaryDir data;
    auto rig = startWithHistory(data.path());
    rig->window.sources().session().feed().receive(spotLines(0, 25));
    const QString csv = data.filePath("export.csv");
    rig->platform.setUserFolder(UserFolder::Documents, "/home/me/Documents");
    rig->platform.answerFileDialog(data.filePath("export")); // typed without .csv
    QAction *export24h = rig->window.findChild<QAction *>("exportHours24");
    ASSERT_NE(export24h, nullptr);
    ASSERT_TRUE(rig->window.displayPane(0)->actions().contains(
        export24h->parent()->parent()->findChild<QAction *>("exportAction")));
    export24h->trigger();
    const FileDialogRequest &dialog = rig->platform.lastFileDialog();
    EXPECT_TRUE(dialog.save && dialog.initialFolder == "/home/me/Documents");
    EXPECT_EQ(QtPlatform::toQtFilter(dialog.filter, dialog.filterIndex, nullptr),
              "CSV files (*.csv)");
    ASSERT_TRUE(waitFor([&] { return rig->label("Label_Telnet_Status") == "Exported 25 spots"; }))
        << rig->label("Label_Telnet_Status").toStdString();
    EXPECT_TRUE(readBytes(csv).startsWith("\xEF\xBB\xBFreceived_utc,")); // a UTF-8 mark
    bool wellFormed = false;
    const std::vector<QStringList> rows = parseCsv(QString::fromUtf8(readBytes(csv)), &wellFormed);
    EXPECT_TRUE(wellFormed);
    ASSERT_EQ(rows.size(), 26U);
    EXPECT_EQ(rows[1].at(rows[0].indexOf("source")), rig->state.Telnet_Call);
    EXPECT_EQ(rows[25].at(rows[0].indexOf("dx")), historySpot(24, {}).dxCall);
}
