#include "LocalClusterServer.h"
#include "PaneView.h"
#include "ProgramState.h"
#include "QtPrinters.h"
#include "ScriptedPlatform.h"
#include "WaitFor.h"
#include "frmZKR_MUF.h"

#include <QLabel>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <cstdio>

using namespace zkr;

namespace {

using test::waitFor;

QString clusterLine(const char *kilohertz, const char *dxCall, const char *comment) {
    const QString frequency = QString::fromLatin1(kilohertz);
    return QString("DX de SP9HWY:").leftJustified(24 - frequency.size(), ' ') + frequency + "  " +
           QString(dxCall).leftJustified(13, ' ') + QString(comment).leftJustified(31, ' ') +
           "1712Z";
}

bool hasColour(const PaneView &pane, std::uint32_t colour) {
    const MemoryPane &source = *pane.source();
    for (std::int64_t i = 0; i < source.lineCount(); ++i) {
        for (const ColourRun &run : source.line(i).runs) {
            if (run.colour == colour) {
                return true;
            }
        }
    }
    return false;
}

// The program as a user starts it: settings file beside it, telnet mode,
// the cluster on this machine.
TEST(EndToEnd, SpotsFromTheClusterAppearInTheirPanesNewestFirst) {
    LocalClusterServer node;
    QTemporaryDir folder;
    ASSERT_TRUE(LocalClusterServer::writeSettings(folder.path(), node.port()));

    ProgramState state;
    ScriptedPlatform platform;
    platform.setApplicationFolder(folder.path());
    frmZKR_MUF window(state, platform);
    window.Form_Load();
    window.show();

    auto *status = window.findChild<QLabel *>("Label_Telnet_Status");
    ASSERT_TRUE(waitFor([&] { return status->text().startsWith(" Connected to GB7TST"); }))
        << status->text().toStdString();
    EXPECT_EQ(node.logins(), QStringList({"DL1ABC"}));

    const QString es6m = clusterLine("50110.0", "OH1XYZ", "JO90JR<ES>KP20");
    const QString ms2m = clusterLine("144370.0", "OZ1ABC", "JO62QM JO65 MS");
    const QString es2m = clusterLine("144300.0", "EA5XYZ", "JO62QM IM98 es");
    const QByteArray bells("\x07\x07");
    node.send((es6m + bells + "\r\n").toLatin1());
    node.send((ms2m + "\r\n" + es2m + "\r\n").toLatin1());
    ASSERT_TRUE(waitFor([&] { return window.displayPane(0)->shownLineCount() >= 3 + 7; }));

    const QStringList all = window.displayPane(0)->text().split("\r\n");
    if (qEnvironmentVariableIsSet("ZKR_SHOW_PANES")) {
        std::printf("%s\n", qPrintable(window.displayPane(0)->text()));
    }
    ASSERT_GE(all.size(), 3);
    EXPECT_TRUE(all[0].startsWith(es2m.mid(6, 40))) << all[0].toStdString();
    EXPECT_TRUE(all[1].startsWith(ms2m.mid(6, 40))) << all[1].toStdString();
    EXPECT_TRUE(all[2].startsWith(es6m.mid(6, 40))) << all[2].toStdString();
    EXPECT_TRUE(all[0].contains("MUF=")) << all[0].toStdString();
    EXPECT_FALSE(all[1].contains("MUF=")); // MS: raw line only
    EXPECT_TRUE(all[2].contains("MUF="));

    const QString twoMetre = window.displayPane(2)->text();
    EXPECT_TRUE(twoMetre.contains("EA5XYZ"));
    EXPECT_TRUE(twoMetre.contains("OZ1ABC"));
    EXPECT_FALSE(twoMetre.contains("OH1XYZ"));
    const QString es = window.displayPane(3)->text();
    EXPECT_TRUE(es.contains("EA5XYZ"));
    EXPECT_TRUE(es.contains("OH1XYZ"));
    EXPECT_FALSE(es.contains("OZ1ABC"));
    // The own square is highlighted in magenta; the prompt went in blue.
    EXPECT_TRUE(hasColour(*window.displayPane(2), 0xFF00FF));
    EXPECT_TRUE(hasColour(*window.displayPane(0), 0xFF0000));
    EXPECT_FALSE(state.Busy);

    node.closeClients();
    ASSERT_TRUE(waitFor([&] { return !state.Telnet_Connected; }));
    EXPECT_TRUE(status->text().startsWith(" Not connected !"));
}

} // namespace
