#include "PskReporterClient.h"
#include "PskReporterBroker.h"
#include "QtPrinters.h"
#include "WaitFor.h"

#include <gtest/gtest.h>

using namespace zkr;
using test::waitFor;
using State = PskReporterClient::State;

namespace {

QByteArray report(const char *call, const char *hertz, const char *locators) {
    return QByteArray(R"({"f":)") + hertz + R"(,"md":"FT8","rp":-3,"t":1718035200,"sc":")" + call +
           R"(","rc":"SP5ZZZ",)" + locators + "}";
}

// Everything a client at the own station (Berlin) hands on.
struct Watched {
    PskReporterClient client;
    QList<Reception> receptions;
    QStringList statuses;

    Watched(const QString &host, quint16 port) {
        client.setOptions({15000, 60, 200, 1000});
        QObject::connect(&client, &PskReporterClient::reception,
                         [this](auto &r) { receptions << r; });
        QObject::connect(&client, &PskReporterClient::statusChanged,
                         [this](auto &s) { statuses << s; });
        client.start(host, port, {"6m", "2m"}, "DL9OWN", "JO62QM", false);
    }
};

TEST(PskReporterClient, ListensToTheChosenBandsAndOutlivesPayloadsItCannotUse) {
    test::LocalBroker broker;
    ASSERT_TRUE(broker.start());
    Watched watched("127.0.0.1", broker.port());
    ASSERT_TRUE(waitFor([&] { return watched.client.state() == State::Subscribed; }));
    EXPECT_EQ(watched.statuses.last(),
              QString("PSK Reporter: subscribed to 2 bands at 127.0.0.1:%1").arg(broker.port()));
    const char *near = R"("sl":"IO91","rl":"KO85")";
    const std::pair<const char *, QByteArray> published[] = {
        {"6m", report("G1AAA", "50313500", near)},
        {"6m", "{\"f\":50313500,\"sl\":\x01garbage"},
        {"10m", report("G2BBB", "28074000", near)},
        {"6m", report("G3CCC", "50313500", R"("sl":"IO91")")},
        {"2m", report("JA1DDD", "144174000", R"("sl":"PM95","rl":"PM96")")},
        {"2m", report("G4EEE", "144174000", near)},
    };
    for (const auto &[band, payload] : published) {
        ASSERT_TRUE(broker.publish(
            QByteArray("pskr/filter/v2/") + band + "/FT8/X/SP5ZZZ/IO91/KO85/1/2", payload));
    }
    ASSERT_TRUE(waitFor([&] { return watched.client.counters().received == 5; }));
    EXPECT_EQ(watched.client.counters(), (PskReporterCounters{5, 1, 1, 1, 2}));
    ASSERT_EQ(watched.receptions.size(), 2);
    EXPECT_EQ(QStringList({watched.receptions[0].tx.call, watched.receptions[1].tx.call}),
              QStringList({"G1AAA", "G4EEE"}));
    EXPECT_DOUBLE_EQ(watched.receptions[1].frequencyMhz, 144.174);
}

TEST(PskReporterClient, ComesBackByItselfWhenTheBrokerReturns) {
    test::LocalBroker broker;
    // Nobody listens yet: refused, and tried again and again.
    auto watched = std::make_unique<Watched>("localhost", broker.port());
    ASSERT_TRUE(waitFor([&] { return watched->client.attempt() >= 2; }));
    EXPECT_TRUE(watched->statuses.last().contains("reconnecting in"));
    ASSERT_TRUE(broker.start());
    ASSERT_TRUE(waitFor([&] { return watched->client.state() == State::Subscribed; }));
    broker.kill();
    ASSERT_TRUE(waitFor([&] { return watched->client.state() == State::Waiting; }));
    EXPECT_EQ(watched->client.attempt(), 1);
    ASSERT_TRUE(broker.start());
    ASSERT_TRUE(waitFor([&] { return watched->client.state() == State::Subscribed; }));
    broker.publish("pskr/filter/v2/6m/FT8/X/Y/IO91/KO85/1/2",
                   report("G1AAA", "50313500", R"("sl":"IO91","rl":"KO85")"));
    EXPECT_TRUE(waitFor([&] { return watched->receptions.size() == 1; }));
    watched.reset(); // while connected: nothing may call back into it
    QTest::qWait(50);
}

} // namespace
