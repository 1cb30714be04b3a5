#include "PskReporterPayload.h"
#include "PskReporterSettings.h"
#include "QtPrinters.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace zkr;

namespace {

const QDateTime Now(QDate(2024, 6, 10), QTime(16, 0, 5), Qt::UTC);

// A 6 m report heard at the own station (Berlin), changed by `patch`: a
// null field is removed, any other replaces or adds.
QByteArray payload(const char *patch = "{}") {
    QJsonObject object = QJsonDocument::fromJson(R"({"sq":30142870791,"f":50313500,"md":"ft8",
        "rp":-7,"t":1718035200,"sc":"dl1aaa","sl":"jo40ab12","rc":"SP5ZZZ","rl":"KO02",
        "sa":230,"ra":269,"b":"6m"})")
                             .object();
    const QJsonObject changes = QJsonDocument::fromJson(patch).object();
    for (auto it = changes.begin(); it != changes.end(); ++it) {
        it->isNull() ? void(object.remove(it.key())) : void(object.insert(it.key(), *it));
    }
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

TEST(PskReporterPayload, ReadsReportsAndSaysWhyOthersAreDropped) {
    using D = PskReporterDrop;
    const struct {
        const char *name;
        QByteArray json;
        D drop;
        bool atOwnStation = false;
    } cases[] = {
        {"full", payload(), D::None},
        {"unknown fields", payload(R"({"zz":[1],"t_tx":1718035190})"), D::None},
        {"own call as receiver", payload(R"({"rc":"dl9own"})"), D::None, true},
        {"own call as sender", payload(R"({"sc":"DL9OWN"})"), D::None},
        {"no sender locator", payload(R"({"sl":null})"), D::NoLocator},
        {"empty receiver locator", payload(R"({"rl":""})"), D::NoLocator},
        {"3-char locator", payload(R"({"rl":"KO0"})"), D::NoLocator},
        {"no field letters", payload(R"({"sl":"ZZ00"})"), D::NoLocator},
        {"locator a number", payload(R"({"rl":52})"), D::NoLocator},
        {"no frequency", payload(R"({"f":null})"), D::BadPayload},
        {"frequency text", payload(R"({"f":"50313500"})"), D::BadPayload},
        {"no time", payload(R"({"t":null})"), D::BadPayload},
        {"no receiver call", payload(R"({"rc":null})"), D::BadPayload},
        {"call with a blank", payload(R"({"sc":"DL1 AAA"})"), D::BadPayload},
        {"cut off", payload().chopped(5), D::BadPayload},
        {"array", "[1,2]", D::BadPayload},
        {"empty", "", D::BadPayload},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        const PskReporterParsed parsed = parsePskReporterPayload(c.json, "DL9OWN", "jo62qm", Now);
        EXPECT_EQ(parsed.drop, c.drop);
        ASSERT_EQ(parsed.reception.has_value(), c.drop == D::None);
        if (!parsed.reception) {
            continue;
        }
        const Reception &r = *parsed.reception;
        EXPECT_EQ(r.source, ReportSource::PskReporter);
        EXPECT_EQ(r.time, QDateTime(QDate(2024, 6, 10), QTime(16, 0), Qt::UTC));
        EXPECT_EQ(r.received, Now);
        EXPECT_DOUBLE_EQ(r.frequencyMhz, 50.3135);
        EXPECT_EQ(r.mode, "FT8");
        EXPECT_EQ(r.snr, -7);
        EXPECT_EQ(r.tx.locator, "JO40AB");
        EXPECT_EQ(r.rx.locator, "KO02");
        EXPECT_EQ(r.atOwnStation, c.atOwnStation);
        ASSERT_TRUE(r.es.has_value());
        EXPECT_EQ(r.es->cloud.left(2), "JO"); // between Frankfurt and Warsaw
    }
}

TEST(PskReporterIntake, KeepsOnlyCloudsNearTheOwnStationUnlessAllAreWanted) {
    const struct {
        const char *name, *patch;
        bool allReports, kept;
    } cases[] = {
        // 2,500 km London - Moscow, but the cloud is over Poland.
        {"long path, near cloud", R"({"sl":"IO91","rl":"KO85"})", false, true},
        // 100 km in Japan: a short path, the cloud 8,000 km away.
        {"short path, far cloud", R"({"sl":"PM95","rl":"PM96"})", false, false},
        {"far cloud, all reports", R"({"sl":"PM95","rl":"PM96"})", true, true},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        PskReporterIntake intake("DL9OWN", "JO62QM", c.allReports);
        EXPECT_EQ(intake.take(payload(c.patch), Now).has_value(), c.kept);
        EXPECT_EQ(intake.counters().kept, c.kept ? 1u : 0u);
        EXPECT_EQ(intake.counters().filtered, c.kept ? 0u : 1u);
    }
    PskReporterIntake intake("DL9OWN", "JO62QM", false);
    for (const char *patch : {"{}", R"({"sl":"PM95","rl":"PM96"})", R"({"rl":null})", "{}"}) {
        intake.take(payload(patch), Now);
    }
    intake.take("{\"f\":", Now);
    EXPECT_EQ(intake.counters(), (PskReporterCounters{5, 1, 1, 1, 2}));
}

TEST(PskReporterTopics, OneFilterTopicPerBandOrTheWholeTree) {
    EXPECT_EQ(pskReporterBands(" 6M, 4m,,6m, a/b, 2 m,#"), QStringList({"6m", "4m"}));
    EXPECT_EQ(pskReporterTopics({"6m", "2m"}),
              QStringList({"pskr/filter/v2/6m/+/+/+/+/+/+/+", "pskr/filter/v2/2m/+/+/+/+/+/+/+"}));
    EXPECT_EQ(pskReporterTopics({"6m", "ALL"}), QStringList({"pskr/filter/v2/#"}));
}

TEST(PskReporterSettings, DefaultsForMissingOrUnusableValuesAndARoundTrip) {
    QTemporaryDir folder;
    const QString ini = folder.filePath("zkr_muf.ini");
    EXPECT_EQ(PskReporterSettings::read(ini), PskReporterSettings());
    QFile file(ini);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("[PSKReporter]\r\nEnabled=OFF\r\nPort=70000\r\nBands=,\r\nHost=\r\n");
    file.close();
    PskReporterSettings expected;
    expected.enabled = false;
    EXPECT_EQ(PskReporterSettings::read(ini), expected);
    expected = {true, "127.0.0.1", 11883, {"10m", "all"}, true};
    ASSERT_TRUE(expected.write(ini));
    EXPECT_EQ(PskReporterSettings::read(ini), expected);
}

} // namespace
