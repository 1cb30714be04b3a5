#include "ResultOutput.h"
#include "AnalysisTestState.h"
#include "QtPrinters.h"
#include "RunTimeError.h"

#include <gtest/gtest.h>

#include <limits>

using namespace zkr;
using Run = RecordingPane::Run;
using Runs = std::vector<Run>;

namespace {

Run run(const char *text, std::uint32_t colour) {
    return Run{QString::fromLatin1(text), colour};
}

TEST(PrintColored, InsertsAtTheCaretAndMovesItBehind) {
    RecordingPane pane;
    Print_Colored(pane, u"AB", Black);
    pane.setCaret(1);
    Print_Colored(pane, u"xy", Magenta);
    EXPECT_EQ(pane.caret(), 3);
    Print_Colored(pane, u"-", Grey);
    EXPECT_EQ(pane.runs(),
              (Runs{run("A", Black), run("xy", Magenta), run("-", Grey), run("B", Black)}));
}

TEST(SelectedPanes, BandsAreInclusiveAndEsHasItsOwnPane) {
    struct Case {
        float frequency;
        const char *mode;
        unsigned panes;
    };
    const Case cases[] = {
        {144.300f, "??", 0b0111}, {148.000f, "MS", 0b0111}, {148.001f, "??", 0b0011},
        {144.000f, "ES", 0b1111}, {143.999f, "ES", 0b1011}, {50.150f, "ES", 0b1011},
        {30.000f, "TR", 0b0011},  {29.999f, "ES", 0b1001},  {300.000f, "??", 0b0011},
        {300.001f, "??", 0b0001}, {7.040f, "es", 0b0001},   {0.0f, "", 0b0001},
    };
    for (const Case &c : cases) {
        ProgramState s = analysisState();
        s.Spot_Frequency = c.frequency;
        s.Spot_Mode = QString::fromLatin1(c.mode);
        EXPECT_EQ(Selected_Panes(s), c.panes) << c.frequency << " " << c.mode;
    }
}

TEST(RoundHalfUp, RoundsHalvesUpwards) {
    const double cases[][2] = {{2.5, 3},   {2.49, 2}, {-2.5, -2},   {-0.5, 0},
                               {-0.6, -1}, {7.4, 7},  {143.5, 144}, {0, 0}};
    for (const auto &c : cases) {
        EXPECT_EQ(Round_Half_Up(c[0]), c[1]) << c[0];
    }
    for (const double bad : {std::numeric_limits<double>::quiet_NaN(),
                             std::numeric_limits<double>::infinity(), 1e300}) {
        EXPECT_THROW(Round_Half_Up(bad), RunTimeError) << bad;
    }
}

TEST(ColourValue, ReadsTheDecimalColourTexts) {
    EXPECT_EQ(Colour_Value(QStringLiteral("0")), 0u);
    EXPECT_EQ(Colour_Value(QStringLiteral("16711935")), 0xFF00FFu);
    EXPECT_EQ(Colour_Value(QStringLiteral("11579568")), 0xB0B0B0u);
    const struct {
        const char *text;
        RunTimeError::Code code;
    } bad[] = {{"", RunTimeError::TypeMismatch},
               {"magenta", RunTimeError::TypeMismatch},
               {"4294967296", RunTimeError::Overflow}};
    for (const auto &c : bad) {
        try {
            Colour_Value(QString::fromLatin1(c.text));
            ADD_FAILURE() << c.text;
        } catch (const RunTimeError &error) {
            EXPECT_EQ(error.code(), c.code) << c.text;
        }
    }
}

// One field printer run on a spot, the text and colour it printed in
// pane 0, and the panes it reached.
struct FieldCase {
    const char *name;
    const char *mode;
    float frequency;
    double esMuf;
    double ownMuf;
    double ownMidElevation;
    double ownMidDistance;
    const char *text;
    std::uint32_t colour;
    unsigned panes; // bit i: pane i
};

ProgramState fieldState(const FieldCase &c) {
    ProgramState s = analysisState();
    s.Spot_Mode = QString::fromLatin1(c.mode);
    s.Spot_Frequency = c.frequency;
    s.Es_MUF = c.esMuf;
    s.Own_MUF = c.ownMuf;
    s.OwnMid_Elevation = c.ownMidElevation;
    s.OwnMid_Distance = c.ownMidDistance;
    s.OwnMid_Azimuth = 34.048;
    s.Mid_Locator = QStringLiteral("JO96GP");
    s.Far_Locator = QStringLiteral("KP20LL");
    return s;
}

void expectPrinted(const TestPanes &panes, const FieldCase &c) {
    for (std::size_t i = 0; i < 4; ++i) {
        if ((c.panes & (1U << i)) != 0) {
            EXPECT_EQ(panes.pane[i].runs(), Runs{run(c.text, c.colour)}) << c.name << " pane " << i;
        } else {
            EXPECT_TRUE(panes.pane[i].text().isEmpty()) << c.name << " pane " << i;
        }
    }
}

class MufField : public ::testing::TestWithParam<FieldCase> {};

TEST_P(MufField, FlagsDoubtfulResults) {
    const FieldCase &c = GetParam();
    ProgramState s = fieldState(c);
    TestPanes panes;
    Print_MufField(s, panes.all);
    expectPrinted(panes, c);
    EXPECT_EQ(s.Es_Flag, QString::fromLatin1(c.text).left(4)) << c.name;
}

INSTANTIATE_TEST_SUITE_P(
    Cases, MufField,
    ::testing::Values(
        // 212.4 rounds to 212; 50 MHz and at least 200: doubtful; at least 144:
        // magenta. Panes 0, 1 and 3, not 2.
        FieldCase{"Es212On6m", "ES", 50.150f, 212.4, 0, 5, 500, "Es? MUF=212MHz", Magenta, 0b1011},
        // 7.4 rounds to 7, padded with two blanks.
        FieldCase{"Es7On10m", "ES", 28.0f, 7.4, 0, 5, 500, "    MUF=  7MHz", Black, 0b1001},
        FieldCase{"Es239On2m", "ES", 144.3f, 239.4, 0, 5, 500, "    MUF=239MHz", Magenta, 0b1111},
        FieldCase{"Es240On2m", "ES", 144.3f, 239.5, 0, 5, 500, "Es? MUF=240MHz", Magenta, 0b1111},
        FieldCase{"Es220On4m", "ES", 70.2f, 219.5, 0, 5, 500, "Es? MUF=220MHz", Magenta, 0b1011},
        FieldCase{"Es199On6m", "ES", 50.3f, 199.49, 0, 5, 500, "    MUF=199MHz", Magenta, 0b1011},
        FieldCase{"Es251On10m", "ES", 28.5f, 250.5, 0, 5, 500, "Es? MUF=251MHz", Magenta, 0b1001},
        // No mode: always doubtful.
        FieldCase{"NoMode", "??", 50.150f, 60, 0, 5, 500, "Es? MUF= 60MHz", Black, 0b0011},
        // whole(-0.6 + 0.5) = -1: the cloud is below the horizon.
        FieldCase{"BelowHorizon", "ES", 50.150f, 100, 0, -0.6, 500, "    MUF=100MHz", Grey, 0b1011},
        FieldCase{"OnTheHorizon", "ES", 50.150f, 100, 0, -0.5, 500, "    MUF=100MHz", Black,
                  0b1011},
        FieldCase{"MagentaBeatsGrey", "ES", 50.150f, 150, 0, -20, 500, "    MUF=150MHz", Magenta,
                  0b1011},
        FieldCase{"FourDigits", "ES", 1296.2f, 5200.2, 0, 5, 500, "Es? MUF=5200MHz", Magenta,
                  0b1001}),
    [](const auto &named) { return std::string(named.param.name); });

class FotField : public ::testing::TestWithParam<FieldCase> {};

TEST_P(FotField, PrintsTheOwnMufOrBlanks) {
    const FieldCase &c = GetParam();
    ProgramState s = fieldState(c);
    TestPanes panes;
    Print_FotField(s, panes.all);
    expectPrinted(panes, c);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, FotField,
    ::testing::Values(
        FieldCase{"Fot50", "ES", 50.150f, 60, 50.2, 8, 500, " FOT= 50MHz", Black, 0b1011},
        FieldCase{"Fot150", "ES", 144.3f, 200, 149.6, 8, 500, " FOT=150MHz", Magenta, 0b1111},
        FieldCase{"Fot1", "ES", 28.0f, 10, 0.5, 8, 500, " FOT=  1MHz", Black, 0b1001},
        FieldCase{"NoOwnMuf", "ES", 28.0f, 10, 0.49, 8, 500, "           ", Black, 0b1001},
        FieldCase{"NoOwnMufGrey", "ES", 50.150f, 30, 0, -73.4, 16341, "           ", Grey, 0b1011}),
    [](const auto &named) { return std::string(named.param.name); });

class MidSquare : public ::testing::TestWithParam<FieldCase> {};

TEST_P(MidSquare, PrintsTheSquareOfTheCloud) {
    const FieldCase &c = GetParam();
    ProgramState s = fieldState(c);
    TestPanes panes;
    Print_MidSquare(s, panes.all);
    expectPrinted(panes, c);
}

INSTANTIATE_TEST_SUITE_P(Cases, MidSquare,
                         ::testing::Values(FieldCase{"Below144", "ES", 50.150f, 143.49, 0, 8, 500,
                                                     "@JO96 ", Black, 0b1011},
                                           FieldCase{"At144", "ES", 50.150f, 143.5, 0, 8, 500,
                                                     "@JO96 ", Magenta, 0b1011},
                                           FieldCase{"Grey", "ES", 50.150f, 63.6, 0, -3, 500,
                                                     "@JO96 ", Grey, 0b1011}),
                         [](const auto &named) { return std::string(named.param.name); });

struct AzCase {
    const char *name;
    double ownMidDistance;
    double ownMidAzimuth;
    double ownMidElevation;
    double ownMuf;
    Runs printed;
};

class AzField : public ::testing::TestWithParam<AzCase> {};

TEST_P(AzField, PrintsNearCloudsAndEndsTheLine) {
    const AzCase &c = GetParam();
    ProgramState s = analysisState();
    s.Spot_Mode = QStringLiteral("ES");
    s.Spot_Frequency = 50.150f;
    s.Far_Locator = QStringLiteral("KP20LL");
    s.OwnMid_Distance = c.ownMidDistance;
    s.OwnMid_Azimuth = c.ownMidAzimuth;
    s.OwnMid_Elevation = c.ownMidElevation;
    s.Own_MUF = c.ownMuf;
    TestPanes panes;
    Print_AzField(s, panes.all);
    EXPECT_EQ(panes.pane[0].runs(), c.printed);
    EXPECT_EQ(panes.pane[3].runs(), c.printed);
    EXPECT_TRUE(panes.pane[2].text().isEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Cases, AzField,
    ::testing::Values(
        AzCase{"Near", 565.5, 34.048, 8.36, 50.2, {run(" -> KP20 AZ= 34 EL=  8\r\n", Black)}},
        AzCase{"JustInside",
               1499.99,
               359.6,
               0.4,
               150,
               {run(" -> KP20 AZ=360 EL=  0", Magenta), run("\r\n", Black)}},
        // From 1500 km on only the line end.
        AzCase{"AtTheLimit", 1500, 34.0, 8, 50, {run("\r\n", Black)}},
        AzCase{"Far", 16341, 308.5, -73.4, 0, {run("\r\n", Black)}},
        // Below the horizon: grey, and the own MUF cannot make it magenta.
        AzCase{"Below",
               1400,
               5.2,
               -5.5,
               150,
               {run(" -> KP20 AZ=  5 EL= -5", Grey), run("\r\n", Black)}},
        AzCase{"DeepBelow",
               1400,
               95.0,
               -12.5,
               0,
               {run(" -> KP20 AZ= 95 EL=-12", Grey), run("\r\n", Black)}}),
    [](const auto &named) { return std::string(named.param.name); });

TEST(LineEnd, IsAlwaysBlack) {
    ProgramState s = analysisState();
    s.Spot_Frequency = 144.3f;
    s.OwnMid_Elevation = -30;
    s.Color_Black = QStringLiteral("255");
    TestPanes panes;
    Print_LineEnd(s, panes.all);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(panes.pane[i].runs(), Runs{run("\r\n", Black)}) << i;
    }
    EXPECT_TRUE(panes.pane[3].text().isEmpty());
}

} // namespace
