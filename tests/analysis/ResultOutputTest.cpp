#include "ResultOutput.h"
#include "TestSpots.h"

using namespace zkr;

namespace {

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
        EvaluatedSpot spot;
        spot.frequency = c.frequency;
        spot.mode = c.mode;
        EXPECT_EQ(Selected_Panes(spot), c.panes) << c.frequency << " " << c.mode;
    }
}

// The result fields of a computed spot whose cloud is over JO96 and whose
// hop from the own station comes down in KP20. Each field has its own
// colour: k black, m magenta, g grey.
TEST(ResultFields, TextAndColourAtEveryBoundary) {
    // clang-format off
    const struct {
        float frequency;
        const char *mode;
        double muf, ownMuf, elevation, ownKm;
        const char *text, *colours;
    } cases[] = {
        {50.15f, "ES", 63.57, 50.15, 8.36, 565.5,
         "    MUF= 64MHz@JO96  FOT= 50MHz -> KP20 AZ=360 EL=  8", "kkkk"},
        // Magenta from a MUF that rounds to 144, for the MUF and the square.
        {50.15f, "ES", 143.49, 50, 8, 565.5,
         "    MUF=143MHz@JO96  FOT= 50MHz -> KP20 AZ=360 EL=  8", "kkkk"},
        {50.15f, "ES", 143.5, 50, 8, 565.5, "    MUF=144MHz@JO96  FOT= 50MHz -> KP20 AZ=360 EL=  8",
         "mmkk"},
        // The own MUF: magenta from 144, the course only while the cloud is
        // not below the horizon (elevation rounded).
        {50.15f, "ES", 150, 143.49, 8, 565.5,
         "    MUF=150MHz@JO96  FOT=143MHz -> KP20 AZ=360 EL=  8", "mmkk"},
        {50.15f, "ES", 150, 143.5, -0.5, 565.5,
         "    MUF=150MHz@JO96  FOT=144MHz -> KP20 AZ=360 EL=  0", "mmmm"},
        {50.15f, "ES", 150, 144, -0.51, 565.5,
         "    MUF=150MHz@JO96  FOT=144MHz -> KP20 AZ=360 EL= -1", "mmmg"},
        // Below the horizon every field that is not magenta is grey.
        {50.15f, "ES", 63.57, 0, -0.51, 565.5,
         "    MUF= 64MHz@JO96             -> KP20 AZ=360 EL= -1", "gggg"},
        {50.15f, "ES", 63.57, 0.5, -12.5, 565.5,
         "    MUF= 64MHz@JO96  FOT=  1MHz -> KP20 AZ=360 EL=-12", "gggg"},
        {50.15f, "ES", 63.57, 0.49, -0.5, 565.5,
         "    MUF= 64MHz@JO96             -> KP20 AZ=360 EL=  0", "kkkk"},
        // The course field only for a cloud nearer than 1500 km.
        {50.15f, "ES", 63.57, 50.15, 8, 1499.99,
         "    MUF= 64MHz@JO96  FOT= 50MHz -> KP20 AZ=360 EL=  8", "kkkk"},
        {50.15f, "ES", 63.57, 50.15, 8, 1500, "    MUF= 64MHz@JO96  FOT= 50MHz", "kkk"},
        // Doubtful results: an unmarked spot, over 250 MHz, or the limit of the
        // band (the whole MHz of the frequency).
        {50.15f, "??", 63.57, 50.15, 8, 1500, "Es? MUF= 64MHz@JO96  FOT= 50MHz", "kkk"},
        {28.5f, "ES", 250.49, 50, 8, 1500, "    MUF=250MHz@JO96  FOT= 50MHz", "mmk"},
        {28.5f, "ES", 250.5, 50, 8, 1500, "Es? MUF=251MHz@JO96  FOT= 50MHz", "mmk"},
        {144.6f, "ES", 239.49, 50, 8, 1500, "    MUF=239MHz@JO96  FOT= 50MHz", "mmk"},
        {144.6f, "ES", 239.5, 50, 8, 1500, "Es? MUF=240MHz@JO96  FOT= 50MHz", "mmk"},
        {145.2f, "ES", 245, 50, 8, 1500, "    MUF=245MHz@JO96  FOT= 50MHz", "mmk"},
        {70.6f, "ES", 219.4, 50, 8, 1500, "    MUF=219MHz@JO96  FOT= 50MHz", "mmk"},
        {70.6f, "ES", 220, 50, 8, 1500, "Es? MUF=220MHz@JO96  FOT= 50MHz", "mmk"},
        {50.6f, "ES", 199.4, 50, 8, 1500, "    MUF=199MHz@JO96  FOT= 50MHz", "mmk"},
        {50.6f, "ES", 200, 50, 8, 1500, "Es? MUF=200MHz@JO96  FOT= 50MHz", "mmk"},
        {1296.2f, "ES", 5200.2, 1000, 8, 1500, "Es? MUF=5200MHz@JO96  FOT=1000MHz", "mmm"},
    };
    // clang-format on
    for (const auto &c : cases) {
        EvaluatedSpot spot;
        spot.frequency = c.frequency;
        spot.mode = c.mode;
        spot.es = EsPath{.cloud = "JO96GP",
                         .muf = c.muf,
                         .ownMuf = c.ownMuf,
                         .azimuth = 359.5,
                         .elevation = c.elevation,
                         .far = "KP20LL",
                         .ownKm = c.ownKm};
        Print_MufField(spot);
        Print_MidSquare(spot);
        Print_FotField(spot);
        Print_AzField(spot);
        QString text;
        std::string perCharacter, colours;
        for (const TextRun &run : spot.runs) {
            text += run.text;
            const char colour = run.colour == M   ? 'm'
                                : run.colour == G ? 'g'
                                : run.colour == K ? 'k'
                                                  : '?';
            perCharacter += std::string(std::size_t(run.text.size()), colour);
        }
        EXPECT_EQ(text, QString::fromLatin1(c.text) + "\r\n") << c.text;
        // The colour of each field (MUF, square, FOT, course, line end), the
        // same all through it.
        const qsizetype at = text.indexOf('@'), arrow = text.indexOf(" -> "), end = text.size() - 2;
        const qsizetype bounds[] = {0, at, at + 6, arrow < 0 ? end : arrow, end, end + 2};
        for (std::size_t i = 0; i + 1 < std::size(bounds); ++i) {
            const std::string field =
                perCharacter.substr(std::size_t(bounds[i]), std::size_t(bounds[i + 1] - bounds[i]));
            if (!field.empty()) {
                colours += field.find_first_not_of(field[0]) == std::string::npos ? field[0] : '?';
            }
        }
        EXPECT_EQ(colours, c.colours + std::string("k")) << c.text;
    }
}

} // namespace
