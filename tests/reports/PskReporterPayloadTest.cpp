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
        {"no frequency", payload(R"({"f":null})"), D::BadPayload},
        {"frequency text", payload(R"({"f":"50313500"})"), D::BadPayload},
        {"no receiver call", payload(R"({"rc":null})"), D::BadPayload},
        {"cut off", payload().chopped(5), D::BadPayload},
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
        EXPECT_EQ(std::tuple(r.source, r.time, r.received, r.mode, r.tx.locator, r.rx.locator,
                             r.snr, r.atOwnStation),
                  std::tuple(ReportSource::PskReporter,
                             QDateTime(QDate(2024, 6, 10), QTime(16, 0), Qt::UTC), Now,
                             QString("FT8"), QString("JO40AB"), QString("KO02"), std::optional(-7),
                             c.atOwnStation));
        EXPECT_DOUBLE_EQ(r.frequencyMhz, 50.3135);
    }
}

// Near clouds kept, far ones dropped and the counters are the client's test
// (PskReporterClientTest); here a far cloud is kept when all are wanted.
TEST(PskReporterIntake, AllReportsKeepsFarCloudsToo) {
    const QByteArray far = payload(R"({"sl":"PM95","rl":"PM96"})"); // 100 km path, cloud in Japan
    for (const bool all : {false, true}) {
        EXPECT_EQ(PskReporterIntake("DL9OWN", "JO62QM", all).take(far, Now).has_value(), all);
    }
}

TEST(PskReporterTopics, OneFilterTopicPerBandOrTheWholeTree) {
    EXPECT_EQ(pskReporterBands(" 6M, 4m,,6m, a/b, 2 m,#"), QStringList({"6m", "4m"}));
    EXPECT_EQ(pskReporterTopics({"6m", "2m"}),
              QStringList({"pskr/filter/v2/6m/+/+/+/+/+/+/+", "pskr/filter/v2/2m/+/+/+/+/+/+/+"}));
    EXPECT_EQ(pskReporterTopics({"6m", "ALL"}), QStringList({"pskr/filter/v2/#"}));
}

TEST(PskReporterSettings, DefaultsForMissingOrUnusableValues) {
    QTemporaryDir folder;
    const QString ini = folder.filePath("zkr_muf.ini");
    QFile file(ini);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) &&
                file.write("[PSKReporter]\r\nEnabled=OFF\r\nPort=70000\r\nBands=,\r\nHost=\r\n"));
    file.close();
    PskReporterSettings expected;
    expected.enabled = false;
    EXPECT_EQ(PskReporterSettings::read(ini), expected);
}

} // namespace
