#include "WsjtxListener.h"
#include "QtPrinters.h"
#include "WaitFor.h"
#include "WsjtxDatagrams.h"

#include <QNetworkInterface>
#include <QUdpSocket>

#include <gtest/gtest.h>

#include <memory>

namespace zkr {
namespace {

using namespace test;

struct Heard {
    QStringList reports;
    QStringList statuses;
};

void listen(WsjtxListener &listener, Heard &heard, const WsjtxSettings &settings) {
    QObject::connect(&listener, &WsjtxListener::reception,
                     [&](const Reception &r) { heard.reports << describe(r).section(' ', 0, 4); });
    QObject::connect(&listener, &WsjtxListener::statusChanged,
                     [&](const QString &text) { heard.statuses << text; });
    listener.setOwnStation("DL9OWN", "JO40");
    listener.start(settings);
}

quint16 freePort() {
    QUdpSocket probe;
    probe.bind(QHostAddress::LocalHost, 0);
    return probe.localPort();
}

// Decodes sent the way WSJT-X sends them, to 127.0.0.1 or to a multicast
// group on the loopback interface; every listener of a group hears them.
TEST(WsjtxListener, HearsDecodes) {
    for (const QString group : {"", "239.255.43.21"}) {
        SCOPED_TRACE(group.toStdString());
        WsjtxSettings settings;
        settings.port = freePort();
        settings.multicastGroup = group;
        Heard heard[2];
        std::unique_ptr<WsjtxListener> listeners[2];
        const int count = group.isEmpty() ? 1 : 2;
        for (int i = 0; i < count; ++i) {
            listeners[i] = std::make_unique<WsjtxListener>();
            listen(*listeners[i], heard[i], settings);
            ASSERT_TRUE(listeners[i]->isListening());
        }
        QUdpSocket wsjtx;
        wsjtx.bind(QHostAddress::AnyIPv4, 0);
        for (const QNetworkInterface &net : QNetworkInterface::allInterfaces()) {
            if (net.flags().testFlag(QNetworkInterface::IsLoopBack)) {
                wsjtx.setMulticastInterface(net);
            }
        }
        const QHostAddress to(group.isEmpty() ? "127.0.0.1" : group);
        wsjtx.writeDatagram(status("WSJT-X", 50313000, "DL1ABC", "JO62"), to, settings.port);
        wsjtx.writeDatagram(
            decode("WSJT-X", QDateTime::currentDateTimeUtc().time(), -12, 1234, "CQ EA7ABC IM76"),
            to, settings.port);
        for (int i = 0; i < count; ++i) {
            EXPECT_TRUE(waitFor([&] { return !heard[i].reports.isEmpty(); }));
            EXPECT_EQ(heard[i].reports, QStringList("EA7ABC IM76 > DL1ABC JO62"));
            EXPECT_EQ(heard[i].statuses,
                      QStringList(
                          group.isEmpty()
                              ? QString("WSJT-X: listening on 127.0.0.1 port %1").arg(settings.port)
                              : QString("WSJT-X: listening on multicast group %1 port %2")
                                    .arg(group)
                                    .arg(settings.port)));
        }
    }
}

// A port in use is said once, with the way out; the listener takes the
// port when it comes free.
TEST(WsjtxListener, PortInUseSaidOnce) {
    QUdpSocket other;
    ASSERT_TRUE(other.bind(QHostAddress::LocalHost, 0));
    WsjtxSettings settings;
    settings.port = other.localPort();
    WsjtxListener listener;
    listener.setRetryInterval(10);
    Heard heard;
    listen(listener, heard, settings);
    QTest::qWait(100);
    ASSERT_EQ(heard.statuses.size(), 1);
    EXPECT_TRUE(heard.statuses[0].contains("in use")) << heard.statuses[0].toStdString();
    EXPECT_TRUE(heard.statuses[0].contains("multicast group")) << heard.statuses[0].toStdString();
    other.close();
    EXPECT_TRUE(waitFor([&] { return listener.isListening(); }));
    EXPECT_EQ(heard.statuses.size(), 2);
}

} // namespace
} // namespace zkr
