#include "CallBookLocator.h"
#include "CountryExcerpt.h"
#include "PaneOutput.h"
#include "QtPrinters.h"
#include "Reception.h"
#include "SpotPipeline.h"

#include <gtest/gtest.h>

using namespace zkr;

namespace {

// A cluster line as DX Spider sends it, with what follows the time.
QString line(const char *spotter, const char *kiloHertz, const char *dx, const char *comment,
             const char *tail = "") {
    return QString("DX de %1%2  %3 %4 1812Z%5")
        .arg(QString(spotter) + ":", -7)
        .arg(kiloHertz, 11)
        .arg(dx, -12)
        .arg(comment, -30)
        .arg(tail);
}

constexpr auto None = std::nullopt;

TEST(CallBookLocator, GivesApproximatePathsWithinTheLimitAndSaysWhereACallIs) {
    CallBookLocator locator;
    ASSERT_TRUE(locator.countries().parse(CountryExcerpt));
    const QDateTime when(QDate(2026, 6, 1), QTime(18, 0), Qt::UTC);
    Reception report;
    report.time = when;
    report.source = ReportSource::PskReporter;
    report.tx = {"SP9XYZ", "KO00AA"};
    report.rx = {"EA5ABC", "IM99"};
    locator.learn(report);
    locator.learnOwn(QString("EA7XYZ"), QString("IM76QM"), when);
    locator.book().learn(QString("OK1ABC"), QString("JO70"), when, LearnedFrom::Wsjtx);

    SpotPipeline plain, located;
    for (SpotPipeline *pipeline : {&plain, &located}) {
        pipeline->setSettings({.ownLocator = "JO62QM"});
        pipeline->setClock([when] { return when; });
    }
    located.setLocator(&locator);
    EvaluatedSpot withoutBook, withBook;
    QObject::connect(&plain, &SpotPipeline::spotEvaluated,
                     [&](const EvaluatedSpot &spot) { withoutBook = spot; });
    QObject::connect(&located, &SpotPipeline::spotEvaluated,
                     [&](const EvaluatedSpot &spot) { withBook = spot; });

    struct Case {
        QString line;
        std::optional<Located> spotter, dx; // both: an approximate path
        const char *dxLocator = "";
    } cases[] = {
        {line("SP9XYZ", "50110.0", "EA5ABC", "tnx qso"), Located::CallBook, Located::CallBook,
         "IM99"},
        {line("SP9XYZ", "432200.0", "EA5ABC", "tnx qso"), None, None}, // no Es band
        {line("SP9XYZ", "50110.0", "OK1ABC", "tnx qso"), None, None},  // not one Es hop
        {line("SP9XYZ", "50110.0", "EA5ABC", "MS"), None, None},
        {line("SP9XYZ", "50110.0", "EA5ABC/P", "tnx"), None, None}, // Spain: too large
        {line("SP9XYZ", "50110.0", "EA5ABC/MM", "tnx"), None, None},
        {line("EA7XYZ", "50110.0", "EA8ABC", "cq"), Located::CallBook, Located::Country, "IL28BH"},
        {line("EA7XYZ", "50110.0", "DL9ZZZ", "cq"), None, None}, // Germany: too large
        {line("EA7XYZ", "50110.0", "EA8ABC", "IL18 559"), Located::CallBook, Located::Comment,
         "IL18"},
        {line("EA7XYZ", "50110.0", "EA8ABC", "IM76 559"), Located::Comment, Located::Country,
         "IL28BH"},
        {line("EA7XYZ", "50110.0", "EA8ABC", "KP20 559"), Located::CallBook, Located::Country,
         "IL28BH"}, // near neither end: unused
        {line("EA5ABC", "50110.0", "EA8ABC", "IM99<ES>IL18"), None, None}, // exact path
        {line("DL7ZZZ", "50110.0", "EA5ABC", "tnx", " JN58"), Located::CallBook, Located::CallBook,
         "IM99"},
        {line("DL7ZZZ", "50110.0", "EA8ABC", "IL18<ES>JN58"), None, None}, // wrong way round
    };
    for (const Case &c : cases) {
        const std::string what = c.line.toStdString();
        plain.evaluateClusterLine(c.line);
        located.evaluateClusterLine(c.line);
        ASSERT_EQ(withBook.approximate.has_value(), c.spotter.has_value()) << what;
        if (withBook.approximate) {
            EXPECT_EQ(withBook.approximate->spotter, *c.spotter) << what;
            EXPECT_EQ(withBook.approximate->dx, *c.dx) << what;
            EXPECT_EQ(withBook.approximate->dxLocator, QString(c.dxLocator)) << what;
            EXPECT_LE(withBook.approximate->uncertaintyKm, 300) << what;
            EXPECT_GT(withBook.approximate->es.pathKm, 600) << what;
        }
        withBook.approximate.reset();
        EXPECT_EQ(withBook, withoutBook) << what; // runs, panes and es as printed
    }
    // Learned from the cluster: the spotter's locator after the time, and a
    // comment "mine <mode> his" both ways, but not one written the other way.
    EXPECT_EQ(locator.book().find(QString("DL7ZZZ"))->from, LearnedFrom::Spotter);
    EXPECT_EQ(locator.book().find(QString("EA8ABC"))->locator, "IL18");
    EXPECT_EQ(locator.book().find(QString("EA5ABC"))->from, LearnedFrom::Comment);
    EXPECT_EQ(locator.book().find(QString("DL7ZZZ"))->locator, "JN58");
    // Where a call is and how it is known: the own entry, a portable call
    // by its country, a ship nowhere.
    const auto home = locator.where(QString("ea7xyz"));
    ASSERT_TRUE(home);
    EXPECT_EQ(std::tuple(home->how, home->locator, home->learned, home->country),
              std::tuple(Located::CallBook, QString("IM76QM"), when, QString("Spain")));
    const auto portable = locator.where(QString("EA8/EA7XYZ"));
    ASSERT_TRUE(portable);
    EXPECT_EQ(std::tuple(portable->how, portable->country),
              std::tuple(Located::Country, QString("Canary Islands")));
    EXPECT_FALSE(locator.where(QString("EA7XYZ/MM")));

    locator.setUncertaintyLimitKm(500);
    located.evaluateClusterLine(line("EA7XYZ", "50110.0", "DL9ZZZ", "cq"));
    ASSERT_TRUE(withBook.approximate);
    QByteArray json;
    Write_SpotJson(json, withBook);
    EXPECT_TRUE(json.contains(",\"approximate\":true,\"approximate_path\":{\"cloud\":"));
    EXPECT_TRUE(json.contains("\"uncertainty_km\":450,"
                              "\"spotter\":{\"locator\":\"IM76QM\",\"located\":\"callbook\"},"
                              "\"dx\":{\"locator\":\"JO51AA\",\"located\":\"country\"}}"))
        << json.constData();
}

} // namespace
