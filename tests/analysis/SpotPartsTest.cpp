#include "ModeMarkers.h"
#include "SpotEvaluator.h"
#include "SpotLineParsing.h"
#include "SpotWork.h"
#include "TestSpots.h"

#include <limits>

using namespace zkr;

namespace {

TEST(ExtractSpotFields, CutsTheLineByTheColumnsOfTheRunMode) {
    // clang-format off
    const QString web = QString("%1 %2 %3 %4 1712 OH Finla").arg("DL1ABC", -11).arg("50110.0", 10)
                            .arg("OH1XYZ", -12).arg("JO62QM KP20 es", -34);
    // fields: spotter|frequency|DX call|comment|time|tail1|tail2.
    // A comment in UTF-8, its column padded by bytes as the node does.
    const QString utf8 = QString::fromUtf8("SP9HWY:    50110.0  OH1XYZ       " +
                                           QByteArray("été très fort").leftJustified(30) + " 1712Z");
    const struct { const char *runMode; QString line; const char *fields; bool utf8 = false; }
        cases[] = {
        {"TeLnEtClUsTeR", clusterLine("1296012.5", "x").mid(6),
         "SP9HWY:|1296.01|OH1XYZ|x                              171|1712||"},
        // The frequency column reaches into the DX call: a call that starts
        // with a digit adds to the number.
        {"FILE", clusterLine("14074.0", "FT8").mid(6).replace("OH1XYZ", "9A1AAA"),
         "SP9HWY:|14.0741|9A1AAA|FT8                            171|1712||"},
        {"WebCluster", web, "DL1ABC|50.11|OH1XYZ|JO62QM KP20 es|1712|OH|Finla"},
        {"PIGEON", web, "|0|||||"},
        {"FILE", utf8, "SP9HWY:|50.11|OH1XYZ|été très fort               171|1712||", true},
    };
    // clang-format on
    for (const auto &c : cases) {
        AnalysisSettings settings;
        settings.columns = Load_ColumnTable(c.runMode);
        EvaluatedSpot spot;
        spot.line = c.line;
        Extract_SpotFields(spot, settings, c.utf8);
        const QStringList got{spot.spotter, QString::number(spot.frequency, 'g', 6),
                              spot.dxCall,  spot.comment,
                              spot.time,    spot.tail1,
                              spot.tail2};
        EXPECT_EQ(got.join('|'), c.fields) << c.runMode;
    }
}

TEST(FindLocators, CutsTwoLocatorsOutOfTheUpperCasedComment) {
    // Six characters first, wherever; any letter as subsquare; no field S;
    // a cut may join a new square. Each: comment|locator1|locator2|rest.
    // clang-format off
    for (const char *c : {"JO62QM<ES>KP20|JO62QM|KP20??|<ES>", "KP20 JO62QM|JO62QM|KP20??|",
                          "KP20 JO62 JO63|KP20??|JO62??|JO63", "JO62QMKP20LM|JO62QM|KP20LM|",
                          "jo62qm es kp20lm tnx|JO62QM|KP20LM|ES  TNX", "TNX QSO 73|||TNX QSO 73",
                          "JO62YZ KP20|JO62YZ|KP20??|", "SO62QM TNX|||SO62QM TNX",
                          "JO62Q1|JO62??||Q1", "JO6JO62QM2|JO62QM|JO62??|"}) {
        // clang-format on
        const QStringList want = QString(c).split('|');
        SpotWork work;
        work.spot.comment = want[0];
        Find_Locators(work);
        EXPECT_EQ(QStringList({work.spot.comment, work.spot.locator1, work.spot.locator2,
                               work.commentUpper}),
                  want);
    }
}

TEST(FindMode, ClassifiesInTestOrderAndCutsTheMarker) {
    // Upper-cased first; "ES " needs its blank; the end/begin group before all
    // bracketed markers, among those ES before EME. One square: TR, and the
    // comment is not looked at. Each: locator1|locator2|comment|mode|rest.
    // clang-format off
    const char *const cases[] = {
        "|||??|", "||ES|ES|", "||TNX ES|ES|TNX", "||JT65 MS|MS|JT65", "||<ESTNX|ES|TNX",
        "||(MS) 2 PINGS|MS| 2 PINGS", "||73 :ES: 73|ES|73  73", "||BIG MUF 144|MUF|BIG144",
        "||MUF|??|MUF", "||tnx es|ES|TNX", "||ESKIMO|??|ESKIMO", "||<MS> ES|ES|<MS>",
        "||<EME> (ES)|ES|<EME> ", "||(EME) <EME>|EME|(EME) ", "||HIGH MUF2 NOW|MUF|HIGHNOW",
        "||EME SAT|EME|SAT", "JO62QM|JO62AA|<ES>|TR|<ES>", "JO62??|JO62QM||TR|",
        "JO62QM||<ES>|ES|"};
    // clang-format on
    for (const char *c : cases) {
        const QStringList want = QString(c).split('|');
        SpotWork work;
        work.spot.locator1 = want[0];
        work.spot.locator2 = want[1];
        work.commentUpper = want[2];
        Find_Mode(work);
        EXPECT_EQ(work.spot.mode + "|" + work.commentUpper, want[3] + "|" + want[4]) << c;
    }
}

TEST(Locators, SquaresFaultsAndTheFarSide) {
    for (const char *good : {"JO62QM", "JO62", "AA00AA", "RR99XX"}) {
        EXPECT_FALSE(Check_Locator(good)) << good;
        EXPECT_EQ(locatorProblem(good), ""); // nothing to tell the user
    }
    for (const char *bad :
         {"JO62QZ", "JO62YA", "JO6", "JO62Q", "JO62QMA", "jo62qm", "SO62QM", "JOA2QM", ""}) {
        EXPECT_TRUE(Check_Locator(bad)) << bad;
        EXPECT_NE(locatorProblem(bad), "") << bad;
    }
    // A square alone, a spot's ("KP20??") or the own one ("JO62"), is taken at
    // its subsquare LL; Hamlib checks the subsquare centres.
    for (const auto &[square, ll] : {std::pair{u"KP20??", u"KP20LL"}, {u"JO62", u"JO62LL"}}) {
        const GeoPoint got = Locator_Position(square), want = Locator_Position(ll);
        EXPECT_EQ(std::pair(got.latitude, got.longitude), std::pair(want.latitude, want.longitude));
    }
    // Too short to read six characters; a field code beyond 16 bits.
    expectFault([] { Locator_Position(u"JO62Q"); }, RunTimeError::InvalidArgument, "JO62Q");
    expectFault([] { Locator_Position(u"J??"); }, RunTimeError::InvalidArgument, "J??");
    expectFault([] { Locator_Position(u"\u4E00O62QM"); }, RunTimeError::Overflow, "CJK");
    EXPECT_EQ(LatLon_To_Locator(53.5, 184.5), "SO23GM"); // east of 180: field S
    expectFault([] { LatLon_To_Locator(std::numeric_limits<double>::quiet_NaN(), 0); },
                RunTimeError::Overflow, "NaN");
    expectFault([] { LatLon_To_Locator(0, 1e6); }, RunTimeError::Overflow, "beyond 16 bits");
    expectFault([] { LatLon_To_Locator(2000, 0); }, RunTimeError::InvalidArgument, "'A' + 209");
}

TEST(Locators, ReportLocatorsAreCutToSixCharacters) {
    // clang-format off
    const char *const cases[][2] = {
        {"jo62qm", "JO62QM"},   {"JO62qm12", "JO62QM"}, {"io91wm54ax", "IO91WM"},
        {"PL09", "PL09"},       {"JO6", ""},            {"JO62Q", ""},
        {"JO62QMA1", ""},       {"SO62", ""},           {"JO62QY", ""},
        {"JO62QM1", ""},        {"", ""},               {"JO62QM12AY", ""},
    };
    // clang-format on
    for (const auto &c : cases) {
        EXPECT_EQ(Report_Locator(QString(c[0])), QString(c[1])) << c[0];
    }
}

} // namespace
