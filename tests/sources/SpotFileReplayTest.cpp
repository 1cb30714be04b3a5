#include "SpotFileReplay.h"
#include "MemoryPane.h"
#include "ProgramState.h"
#include "QtPrinters.h"
#include "ReceiveHost.h"
#include "RunTimeError.h"
#include "ScriptedPlatform.h"
#include "SpotLineParsing.h"

#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace zkr;
using ::testing::ElementsAre;

namespace {

struct Replay : ReceiveHost {
    ProgramState state;
    ScriptedPlatform platform;
    SpotFileReplay replay;
    QTemporaryDir folder;
    QStringList evaluated;
    QStringList sent;
    MemoryPane panes[8];

    Replay() {
        state.RunMode = "FILE";
        Load_ColumnTable(state);
        state.SpotPrefix = "DX de ";
        state.OwnCall = "DL1ABC";
        state.MaxSpotLines = 250;
        platform.setApplicationFolder(folder.path());
    }
    QString write(const QByteArray &content) {
        const QString name = folder.filePath("spots.txt");
        QFile file(name);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return name;
    }

    void sendData(const QString &text) override { sent << text; }
    void evaluateClusterLine() override { evaluated << state.CurrentSpotLine; }
    Pane &displayPane(int i) override { return panes[i]; }
    Pane &workingPane(int i) override { return panes[4 + i]; }
    void setStatus(const QString &, std::uint32_t) override {}
    void hideWorkLabel() override {}
    void processEvents() override {}
};

const QByteArray Spot1 =
    "DX de SP9HWY:     50110.0  OH1XYZ       JO90JR<ES>KP20                 1712Z";
const QByteArray Spot2 =
    "DX de DL8EBW:    144300.0  OZ1ABC       JO62QM JO65 es                 1713Z";

TEST(SpotFileReplay, ReplaysAConsoleRecordLineByLine) {
    Replay r;
    // As the console writes it: an empty first element, then each chunk
    // with its own line ends followed by one more.
    const QByteArray record = "\r\nWelcome\r\n\r\nlogin: \r\n" + Spot1 + "\r\n" + Spot2 +
                              "\r\n\r\n" + "DL1ABC de GB7TST dxspider >\r\n\r\n";
    r.platform.answerFileDialog(r.write(record));
    r.replay.Replay_SpotFile(r.state, r.platform, r);
    EXPECT_THAT(r.evaluated, ElementsAre(QString(Spot1), QString(Spot2)));
    // The login line tries to answer; there is no session to answer on.
    EXPECT_THAT(r.sent, ElementsAre("DL1ABC\r\n"));
    const FileDialogRequest &asked = r.platform.lastFileDialog();
    EXPECT_EQ(asked.title, "Select the File...");
    EXPECT_EQ(asked.filter, "E-skip files (*.txt, *.txt)|*.txt;*.txt|all files (*.*)|*.*");
    EXPECT_EQ(asked.filterIndex, 1);
    EXPECT_EQ(asked.initialFolder, r.folder.path());
    EXPECT_TRUE(asked.mustExist);
}

TEST(SpotFileReplay, AcceptsEveryLineEndAndALastLineWithoutOne) {
    Replay r;
    EXPECT_EQ(SpotFileReplay::replayFile(r.write(Spot1 + "\n" + Spot2 + "\r" + Spot1), r.state, r),
              3);
    EXPECT_EQ(r.evaluated.size(), 3);
}

TEST(SpotFileReplay, CancelReplaysTheEarlierFileAndWithoutOneDoesNothing) {
    Replay r;
    r.replay.Replay_SpotFile(r.state, r.platform, r); // cancelled, nothing chosen before
    EXPECT_TRUE(r.evaluated.isEmpty());
    r.platform.answerFileDialog(r.write(Spot1 + "\r\n"));
    r.replay.Replay_SpotFile(r.state, r.platform, r);
    r.replay.Replay_SpotFile(r.state, r.platform, r); // cancelled: same file again
    EXPECT_EQ(r.evaluated.size(), 2);
}

TEST(SpotFileReplay, EmptyFileReceivesNothingAndAMissingOneIsAnError) {
    Replay r;
    EXPECT_EQ(SpotFileReplay::replayFile(r.write(""), r.state, r), 0);
    EXPECT_TRUE(r.evaluated.isEmpty());
    EXPECT_THROW(SpotFileReplay::replayFile(r.folder.filePath("gone.txt"), r.state, r),
                 RunTimeError);
}

} // namespace
