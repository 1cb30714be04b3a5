#include "WsjtxSettings.h"
#include "QtPrinters.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace zkr {
namespace {

TEST(WsjtxSettings, ReadAndWrite) {
    const WsjtxSettings defaults;
    WsjtxSettings shared;
    shared.enabled = false;
    shared.address = "0.0.0.0";
    shared.port = 2238;
    shared.multicastGroup = "239.255.0.1";
    const struct {
        const char *ini;
        WsjtxSettings settings;
    } cases[] = {
        {"", defaults},
        {"[WSJTX]\nEnabled=off\nAddress=0.0.0.0\nPort=2238\nMulticastGroup=239.255.0.1\n", shared},
        {"[wsjtx]\r\nenabled = OFF \r\nport=2238\r\naddress=0.0.0.0\r\nmulticastgroup=239.255.0.1",
         shared},
        {"[WSJTX]\nEnabled=maybe\nAddress=\nPort=70000\n", defaults},
        {"[WSJTX]\nPort=0\n[Other]\nEnabled=off\n", defaults},
    };
    QTemporaryDir dir;
    const QString path = dir.filePath("zkr_muf.ini");
    for (const auto &c : cases) {
        SCOPED_TRACE(c.ini);
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(c.ini);
        file.close();
        EXPECT_EQ(WsjtxSettings::read(path), c.settings);
        // What is written reads back the same, over whatever was there.
        for (const WsjtxSettings &written : {shared, defaults}) {
            ASSERT_TRUE(written.write(path));
            EXPECT_EQ(WsjtxSettings::read(path), written);
        }
    }
}

} // namespace
} // namespace zkr
