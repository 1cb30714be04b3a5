#include "WsjtxListener.h"
#include "IniFile.h"
#include "QtPrinters.h"
#include "WaitFor.h"
#include "WsjtxDatagrams.h"

#include <QNetworkInterface>
#include <QTemporaryDir>
#include <QUdpSocket>

#include <gtest/gtest.h>

namespace zkr {
namespace {

// Written through Setup (the window tests); read in any case, bad values as defaults.
TEST(WsjtxSettings, Read) {
    const std::pair<const char *, WsjtxSettings> cases[] = {
        {"[wsjtx]\r\nenabled = OFF \r\nport=2238\r\naddress=0.0.0.0\r\nmulticastgroup=239.255.0.1",
         {false, "0.0.0.0", 2238, "239.255.0.1"}},
        {"[WSJTX]\nEnabled=maybe\nAddress=\nPort=70000\n[Other]\nEnabled=off\n", {}},
    };
    QTemporaryDir dir;
    const QString path = dir.filePath("zkr_muf.ini");
    for (const auto &[ini, settings] : cases) {
        ASSERT_TRUE(IniFile(ini).save(path));
        EXPECT_EQ(WsjtxSettings::read(path), settings) << ini;
    }
}

// Collects what a listener says and hears.
struct Listener : WsjtxListener {
    QStringList reports, statuses;

    explicit Listener(const WsjtxSettings &settings) {
        connect(this, &WsjtxListener::reception,
                [this](const Reception &r) { reports << test::describe(r).section(' ', 0, 4); });
        connect(this, &WsjtxListener::statusChanged, [this](const QString &s) { statuses << s; });
        setRetryInterval(10);
        start(settings);
    }
    // Whether it hears a Status and a CQ sent as WSJT-X sends them.
    bool hearsCq(const QHostAddress &to) {
        QUdpSocket wsjtx;
        wsjtx.bind(QHostAddress::AnyIPv4, 0);
        wsjtx.setMulticastInterface(QNetworkInterface::interfaceFromName("lo"));
        const QTime now = QDateTime::currentDateTimeUtc().time();
        wsjtx.writeDatagram(test::status("X", 50313000, "DL1ABC", "JO62"), to, localPort());
        wsjtx.writeDatagram(test::decode("X", now, -12, 1234, "CQ EA7ABC IM76"), to, localPort());
        return test::waitFor([this] { return !reports.isEmpty(); }) &&
               reports == QStringList("EA7ABC IM76 > DL1ABC JO62");
    }
};

// A port in use, also by a program that would share it, is said once with
// the way out, and taken when it comes free. Every listener of a multicast
// group hears the decodes.
TEST(WsjtxListener, PortInUseAndMulticastGroup) {
    QUdpSocket other;
    ASSERT_TRUE(other.bind(QHostAddress::LocalHost, 0, QUdpSocket::ShareAddress));
    WsjtxSettings settings;
    settings.port = other.localPort();
    const QString port = QString::number(settings.port);
    Listener listener(settings);
    QTest::qWait(100);
    EXPECT_TRUE(listener.statuses.size() == 1 && listener.statuses[0].contains("in use") &&
                listener.statuses[0].contains("multicast group"));
    other.close();
    EXPECT_TRUE(test::waitFor([&] { return listener.isListening(); }));
    EXPECT_EQ(listener.statuses.value(1), "WSJT-X: listening on 127.0.0.1 port " + port);
    EXPECT_TRUE(listener.hearsCq(QHostAddress::LocalHost));
    listener.stop();
    settings.multicastGroup = "239.255.43.21";
    Listener first(settings), second(settings);
    EXPECT_EQ(second.statuses.value(0),
              "WSJT-X: listening on multicast group 239.255.43.21 port " + port);
    EXPECT_TRUE(first.hearsCq(QHostAddress(settings.multicastGroup)) &&
                second.hearsCq(QHostAddress(settings.multicastGroup)));
}

} // namespace
} // namespace zkr
