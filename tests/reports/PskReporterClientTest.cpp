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

    Watched() {
        client.setOptions({15000, 60, 200, 1000});
        QObject::connect(&client, &PskReporterClient::reception,
                         [this](const Reception &r) { receptions << r; });
        QObject::connect(&client, &PskReporterClient::statusChanged,
                         [this](const QString &text) { statuses << text; });
    }
    void start(const QString &host, quint16 port) {
        client.start(host, port, {"6m", "2m"}, "DL9OWN", "JO62QM", false);
    }
};

TEST(PskReporterClient, ListensToTheChosenBandsAndOutlivesPayloadsItCannotUse) {
    test::LocalBroker broker;
    ASSERT_TRUE(broker.start());
    Watched watched;
    watched.start("127.0.0.1", broker.port());
    ASSERT_TRUE(waitFor([&] { return watched.client.state() == State::Subscribed; }));
    EXPECT_EQ(watched.statuses.last(),
              QString("PSK Reporter: subscribed to 2 bands at 127.0.0.1:%1").arg(broker.port()));
    const char *near = R"("sl":"IO91","rl":"KO85")";
    const struct {
        const char *band;
        QByteArray payload;
    } published[] = {
        {"6m", report("G1AAA", "50313500", near)},
        {"6m", "{\"f\":50313500,\"sl\":\x01garbage"},
        {"10m", report("G2BBB", "28074000", near)},
        {"6m", report("G3CCC", "50313500", R"("sl":"IO91")")},
        {"2m", report("JA1DDD", "144174000", R"("sl":"PM95","rl":"PM96")")},
        {"2m", report("G4EEE", "144174000", near)},
    };
    test::Publisher publisher(broker.port());
    ASSERT_TRUE(publisher.isConnected());
    for (const auto &p : published) {
        publisher.publish(QByteArray("pskr/filter/v2/") + p.band + "/FT8/X/SP5ZZZ/IO91/KO85/1/2",
                          p.payload);
    }
    ASSERT_TRUE(waitFor([&] { return watched.client.counters().received == 5; }));
    EXPECT_EQ(watched.client.counters(), (PskReporterCounters{5, 1, 1, 1, 2}));
    ASSERT_EQ(watched.receptions.size(), 2);
    EXPECT_EQ(watched.receptions[0].tx.call, "G1AAA");
    EXPECT_DOUBLE_EQ(watched.receptions[0].frequencyMhz, 50.3135);
    EXPECT_EQ(watched.receptions[1].tx.call, "G4EEE");
    EXPECT_DOUBLE_EQ(watched.receptions[1].frequencyMhz, 144.174);
}

TEST(PskReporterClient, ComesBackByItselfWhenTheBrokerReturns) {
    test::LocalBroker broker;
    auto watched = std::make_unique<Watched>();
    // Nobody listens yet: refused, and tried again and again.
    watched->start("localhost", broker.port());
    ASSERT_TRUE(waitFor([&] { return watched->client.attempt() >= 2; }));
    EXPECT_TRUE(watched->statuses.last().contains("reconnecting in"));
    ASSERT_TRUE(broker.start());
    ASSERT_TRUE(waitFor([&] { return watched->client.state() == State::Subscribed; }));
    broker.kill();
    ASSERT_TRUE(waitFor([&] { return watched->client.state() == State::Waiting; }));
    EXPECT_EQ(watched->client.attempt(), 1);
    ASSERT_TRUE(broker.start());
    ASSERT_TRUE(waitFor([&] { return watched->client.state() == State::Subscribed; }));
    test::Publisher publisher(broker.port());
    publisher.publish("pskr/filter/v2/6m/FT8/X/Y/IO91/KO85/1/2",
                      report("G1AAA", "50313500", R"("sl":"IO91","rl":"KO85")"));
    EXPECT_TRUE(waitFor([&] { return watched->receptions.size() == 1; }));
    watched.reset(); // while connected: nothing may call back into it
    QTest::qWait(50);
}

} // namespace
