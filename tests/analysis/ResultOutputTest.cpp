#include "ResultOutput.h"
#include "AnalysisTestState.h"

using namespace zkr;
using Runs = std::vector<RecordingPane::Run>;

namespace {

RecordingPane::Run run(const char *text, std::uint32_t colour) {
    return {QString::fromLatin1(text), colour};
}

TEST(SelectedPanes, BandsAreInclusiveAndEsHasItsOwnPane) {
    const struct {
        float frequency;
        const char *mode;
        unsigned panes; // bit i: pane i
    } cases[] = {{144.300f, "??", 0b0111}, {148.000f, "MS", 0b0111}, {148.001f, "??", 0b0011},
                 {144.000f, "ES", 0b1111}, {143.999f, "ES", 0b1011}, {30.000f, "TR", 0b0011},
                 {29.999f, "ES", 0b1001},  {300.000f, "??", 0b0011}, {300.001f, "??", 0b0001},
                 {7.040f, "es", 0b0001}};
    for (const auto &c : cases) {
        ProgramState s = analysisState();
        s.Spot_Frequency = c.frequency;
        s.Spot_Mode = QString::fromLatin1(c.mode);
        EXPECT_EQ(Selected_Panes(s), c.panes) << c.frequency << " " << c.mode;
    }
}

enum class Field { Muf, Mid, Fot };

TEST(ResultFields, TextColourAndPanes) {
    const struct {
        Field field;
        const char *mode;
        float frequency;
        double esMuf, ownMuf, elevation;
        const char *text;
        std::uint32_t colour;
        unsigned panes;
    } cases[] = {
        // 212.4 -> 212: 50 MHz and >= 200 is doubtful, >= 144 is magenta.
        {Field::Muf, "ES", 50.150f, 212.4, 0, 5, "Es? MUF=212MHz", Magenta, 0b1011},
        {Field::Muf, "ES", 28.0f, 7.4, 0, 5, "    MUF=  7MHz", Black, 0b1001},
        {Field::Muf, "ES", 144.3f, 239.4, 0, 5, "    MUF=239MHz", Magenta, 0b1111},
        {Field::Muf, "ES", 144.3f, 239.5, 0, 5, "Es? MUF=240MHz", Magenta, 0b1111},
        {Field::Muf, "ES", 70.2f, 219.5, 0, 5, "Es? MUF=220MHz", Magenta, 0b1011},
        {Field::Muf, "ES", 50.3f, 199.49, 0, 5, "    MUF=199MHz", Magenta, 0b1011},
        {Field::Muf, "ES", 28.5f, 250.5, 0, 5, "Es? MUF=251MHz", Magenta, 0b1001},
        {Field::Muf, "??", 50.150f, 60, 0, 5, "Es? MUF= 60MHz", Black, 0b0011},
        {Field::Muf, "ES", 1296.2f, 5200.2, 0, 5, "Es? MUF=5200MHz", Magenta, 0b1001},
        // whole(-0.6 + 0.5) = -1: below the horizon; whole(-0.5 + 0.5) = 0 is not.
        {Field::Muf, "ES", 50.150f, 100, 0, -0.6, "    MUF=100MHz", Grey, 0b1011},
        {Field::Muf, "ES", 50.150f, 100, 0, -0.5, "    MUF=100MHz", Black, 0b1011},
        {Field::Muf, "ES", 50.150f, 150, 0, -20, "    MUF=150MHz", Magenta, 0b1011},
        {Field::Mid, "ES", 50.150f, 143.49, 0, 8, "@JO96 ", Black, 0b1011},
        {Field::Mid, "ES", 50.150f, 143.5, 0, 8, "@JO96 ", Magenta, 0b1011},
        {Field::Mid, "ES", 50.150f, 63.6, 0, -3, "@JO96 ", Grey, 0b1011},
        {Field::Fot, "ES", 144.3f, 200, 149.6, 8, " FOT=150MHz", Magenta, 0b1111},
        {Field::Fot, "ES", 28.0f, 10, 0.5, 8, " FOT=  1MHz", Black, 0b1001},
        {Field::Fot, "ES", 28.0f, 10, 0.49, 8, "           ", Black, 0b1001},
        {Field::Fot, "ES", 50.150f, 30, 0, -73.4, "           ", Grey, 0b1011},
    };
    for (const auto &c : cases) {
        ProgramState s = analysisState();
        s.Spot_Mode = QString::fromLatin1(c.mode);
        s.Spot_Frequency = c.frequency;
        s.Es_MUF = c.esMuf;
        s.Own_MUF = c.ownMuf;
        s.OwnMid_Elevation = c.elevation;
        s.Mid_Locator = QStringLiteral("JO96GP");
        TestPanes panes;
        if (c.field == Field::Muf) {
            Print_MufField(s, panes.all);
            EXPECT_EQ(s.Es_Flag, QString::fromLatin1(c.text).left(4));
        } else if (c.field == Field::Mid) {
            Print_MidSquare(s, panes.all);
        } else {
            Print_FotField(s, panes.all);
        }
        for (std::size_t i = 0; i < 4; ++i) {
            EXPECT_EQ(panes.pane[i].runs(),
                      (c.panes >> i) & 1 ? Runs{run(c.text, c.colour)} : Runs{})
                << c.text << " pane " << i;
        }
    }
}

TEST(ResultFields, AzimuthFieldOnlyForNearCloudsThenTheLineEnd) {
    const struct {
        double distance, azimuth, elevation, ownMuf;
        Runs printed;
    } cases[] = {
        {565.5, 34.048, 8.36, 50.2, {run(" -> KP20 AZ= 34 EL=  8\r\n", Black)}},
        {1499.99, 359.6, 0.4, 150, {run(" -> KP20 AZ=360 EL=  0", Magenta), run("\r\n", Black)}},
        {1500, 34.0, 8, 50, {run("\r\n", Black)}},
        // Below the horizon: grey, and the own MUF cannot make it magenta.
        {1400, 5.2, -5.5, 150, {run(" -> KP20 AZ=  5 EL= -5", Grey), run("\r\n", Black)}},
        {1400, 95.0, -12.5, 0, {run(" -> KP20 AZ= 95 EL=-12", Grey), run("\r\n", Black)}},
    };
    for (const auto &c : cases) {
        ProgramState s = analysisState();
        s.Spot_Mode = QStringLiteral("ES");
        s.Spot_Frequency = 50.150f;
        s.Far_Locator = QStringLiteral("KP20LL");
        s.OwnMid_Distance = c.distance;
        s.OwnMid_Azimuth = c.azimuth;
        s.OwnMid_Elevation = c.elevation;
        s.Own_MUF = c.ownMuf;
        TestPanes panes;
        Print_AzField(s, panes.all);
        EXPECT_EQ(panes.pane[0].runs(), c.printed) << c.distance;
        EXPECT_EQ(panes.pane[3].runs(), c.printed) << c.distance;
        EXPECT_TRUE(panes.pane[2].text().isEmpty());
    }
}

} // namespace
