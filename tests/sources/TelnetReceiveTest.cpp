#include "TelnetReceive.h"
#include "MemoryPane.h"
#include "ProgramState.h"
#include "QtPrinters.h"
#include "ReceiveHost.h"
#include "RunTimeError.h"
#include "SpotLineParsing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace zkr;
using ::testing::ElementsAre;

namespace {

class RecordingHost : public ReceiveHost {
public:
    explicit RecordingHost(ProgramState &state) : state_(state) {}

    QStringList sent;
    QStringList evaluated; // CurrentSpotLine at each evaluation
    QList<float> frequencies;
    QString status;
    std::uint32_t statusColour = 0;
    int workLabelHidden = 0;
    bool failEvaluation = false;
    MemoryPane display[4];
    MemoryPane working[4];

    void sendData(const QString &text) override { sent << text; }
    void evaluateClusterLine() override {
        evaluated << state_.CurrentSpotLine;
        frequencies << state_.Spot_Frequency;
        if (failEvaluation) {
            throw RunTimeError(RunTimeError::Overflow);
        }
    }
    Pane &displayPane(int i) override { return display[i]; }
    Pane &workingPane(int i) override { return working[i]; }
    void setStatus(const QString &caption, std::uint32_t colour) override {
        status = caption;
        statusColour = colour;
    }
    void hideWorkLabel() override { ++workLabelHidden; }
    void processEvents() override {}

private:
    ProgramState &state_;
};

struct Receiver {
    ProgramState state;
    RecordingHost host{state};
    Receiver() {
        state.RunMode = "TELNETCLUSTER";
        Load_ColumnTable(state);
        state.SpotPrefix = "DX de ";
        state.OwnCall = "DL1ABC";
        state.MaxSpotLines = 250;
        state.SpotLines.resize(11);
        state.SpotLines_Last = 0;
        state.Telnet_Call = "GB7DJK";
        state.Telnet_Host = "node.example.net";
        state.Telnet_Port = "7300";
    }
    void receive(const QString &chunk) {
        state.Telnet_Text = chunk;
        Telnet_Receive(state, host);
    }
};

const QString Spot1 =
    "DX de SP9HWY:     50110.0  OH1XYZ       JO90JR<ES>KP20                 1712Z\r\n";
const QString Spot2 =
    "DX de DL8EBW:    144300.0  OZ1ABC       JO62QM JO65 es                 1713Z\r\n";
const QString Spot3 =
    "DX de G4ABC:      70150.0  EI3XYZ       IO91 IO63 tnx                  1714Z\r\n";

TEST(TelnetReceive, OneSpotChunkIsEvaluatedWhole) {
    Receiver r;
    r.receive(Spot1);
    EXPECT_THAT(r.host.evaluated, ElementsAre(Spot1));
    EXPECT_FLOAT_EQ(r.host.frequencies.at(0), 50.11f);
    // The list counts from its own last index, not from the empty slots
    // that start-up made.
    EXPECT_EQ(r.state.SpotLines_Last, 1);
    EXPECT_EQ(r.state.SpotLines.size(), 2);
    EXPECT_EQ(r.state.SpotLines.at(1), Spot1);
}

TEST(TelnetReceive, ManySpotChunkYieldsEachLineWithoutPrefixAndLineEnd) {
    Receiver r;
    r.receive(Spot1 + Spot2 + Spot3);
    EXPECT_THAT(r.host.evaluated, ElementsAre(Spot1.mid(6).chopped(2), Spot2.mid(6).chopped(2),
                                              Spot3.mid(6).chopped(2)));
    EXPECT_THAT(r.host.frequencies, ElementsAre(50.11f, 144.3f, 70.15f));
    // The list keeps each part without its prefix, line end included.
    EXPECT_EQ(r.state.SpotLines.at(2), Spot2.mid(6));
}

TEST(TelnetReceive, LineCutBetweenChunksIsEvaluatedCutAndItsTailDropped) {
    Receiver r;
    r.receive(Spot1 + Spot2.left(40));
    r.receive(Spot2.mid(40) + Spot3);
    EXPECT_THAT(r.host.evaluated, ElementsAre(Spot1.mid(6).chopped(2), Spot2.mid(6, 34)));
}

TEST(TelnetReceive, SpotWithoutFrequencyIsNotEvaluated) {
    Receiver r;
    r.receive("DX de SP9HWY:      abc.0  OH1XYZ       JO90JR                         1712Z\r\n");
    r.receive("DX de SP9HWY:\r\nDX de G4ABC:\r\n");
    EXPECT_TRUE(r.host.evaluated.isEmpty());
}

TEST(TelnetReceive, LoginIsAnsweredAndNothingElseDone) {
    Receiver r;
    r.receive("Hello\r\nlogin: ");
    r.receive(Spot1.left(40) + "login: in comment");
    EXPECT_THAT(r.host.sent, ElementsAre("DL1ABC\r\n", "DL1ABC\r\n"));
    EXPECT_TRUE(r.host.evaluated.isEmpty());
    EXPECT_EQ(r.host.workLabelHidden, 0);
}

TEST(TelnetReceive, BellPairsGoBeforeTheSpotTest) {
    Receiver r;
    const QString bells(2, QChar(7));
    r.receive(bells + Spot1.chopped(2) + bells + "\r\n");
    EXPECT_THAT(r.host.evaluated, ElementsAre(Spot1));
}

TEST(RemoveBellPairs, LeavesOneOfAnOddCount) {
    const QChar bel(7);
    EXPECT_EQ(Remove_BellPairs(QString(3, bel)), QString(1, bel));
    EXPECT_EQ(Remove_BellPairs(QString(4, bel)), QString());
    EXPECT_EQ(Remove_BellPairs(QString("a") + bel + "b" + bel + bel + "c"),
              QString("a") + bel + "bc");
}

TEST(TelnetReceive, PromptTurnsStatusYellowAndGoesToAllEightPanes) {
    Receiver r;
    r.host.display[2].insertColored(u"old\r\n", 0);
    r.host.display[2].setCaret(0);
    r.receive("DL1ABC de GB7DJK 21-Nov-2026 1712Z dxspider >\r\n");
    EXPECT_EQ(r.host.status, " Connected to GB7DJK node.example.net:7300");
    EXPECT_EQ(r.host.statusColour, 0x00FFFFu);
    const QString block =
        "\r\n\r\n\r\nDL1ABC de GB7DJK 21-Nov-2026 1712Z dxspider >\r\n\r\n\r\n\r\n";
    EXPECT_EQ(r.state.Telnet_PromptBlock, block);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(r.host.working[i].text(), block);
        EXPECT_EQ(r.host.working[i].caret(), 0);
        EXPECT_EQ(r.host.display[i].caret(), 0);
    }
    EXPECT_EQ(r.host.display[2].text(), block + "old\r\n");
    EXPECT_EQ(r.host.workLabelHidden, 1);
}

TEST(IsClusterPrompt, ComparesTheDigitsOfTheLastThreeCodes) {
    struct Case {
        QString text;
        bool prompt;
    } cases[] = {
        {"dxspider >\r\n", true},
        {">\r\n", true},
        {QString("x") + QChar(6) + QChar(213) + "\n", true}, // 6 213 10 reads 621310 too
        {QString("x>") + QChar(131) + QChar(0), true},       // 62 131 0 as well
        {"dxspider >\n", false},
        {"dxspider > \r\n", false},
        {"\r\n", false}, // too short to test: no prompt, no fault
        {">", false},
        {"", false},
    };
    for (const Case &c : cases) {
        EXPECT_EQ(Is_ClusterPrompt(c.text), c.prompt) << c.text.toStdString();
    }
}

TEST(TelnetReceive, OtherTextOnlyHidesTheWorkLabel) {
    Receiver r;
    r.receive("WWV de W1AW <18>:   SFI=150, A=8, K=2\r\n" + Spot1);
    r.receive("\r\n");
    r.receive("");
    EXPECT_TRUE(r.host.evaluated.isEmpty());
    EXPECT_TRUE(r.host.status.isEmpty());
    EXPECT_EQ(r.host.workLabelHidden, 2);
}

TEST(TelnetReceive, FailingEvaluationDoesNotStopTheOtherLines) {
    Receiver r;
    r.host.failEvaluation = true;
    r.receive(Spot1 + Spot2 + Spot3);
    EXPECT_EQ(r.host.evaluated.size(), 3);
}

TEST(TelnetReceive, SpotListStaysAtItsLimitOverALongRun) {
    Receiver r;
    r.state.MaxSpotLines = 20;
    // Stands in for the evaluation's trimming step.
    struct TrimmingHost : RecordingHost {
        using RecordingHost::RecordingHost;
        ProgramState *s = nullptr;
        void evaluateClusterLine() override {
            if (s->SpotLine_Count > 0) {
                Trim_SpotLines(*s);
            }
        }
    } host(r.state);
    host.s = &r.state;
    for (int i = 0; i < 500; ++i) {
        r.state.Telnet_Text = Spot1;
        Telnet_Receive(r.state, host);
    }
    EXPECT_EQ(r.state.SpotLines.size(), 21);
    EXPECT_EQ(r.state.SpotLines_Last, 20);
    EXPECT_EQ(r.state.SpotLines.at(20), Spot1);
}

} // namespace
