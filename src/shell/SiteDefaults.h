#pragma once

#include <QString>

namespace zkr::site {

// Every outside address the program uses, kept together so that a changed
// node or page is one edit.

// Built-in telnet cluster, used until the user picks another one in Setup,
// and the fixed cluster of the "/TELNETCLUSTER" and "/DXSPIDER" options:
// GB7DJK, the DX Spider development node, which carries VHF and Es spots
// from the whole European network on the DX Spider default port.
inline const QString DefaultClusterCall = QStringLiteral("GB7DJK");
inline const QString DefaultClusterHost = QStringLiteral("gb7djk.dxcluster.net");
inline const QString DefaultClusterPort = QStringLiteral("7300");

// The fixed cluster of the "/DB0SUE" option, a German DX Spider node.
inline const QString Db0sueHost = QStringLiteral("db0sue.de");
inline const QString Db0suePort = QStringLiteral("8000");

// The web spot service: its base address (shown after "Listen to ") and
// the spot list of the last 200 spots.
inline const QString WebClusterBase = QStringLiteral("http://www.dxsummit.fi");
inline const QString WebClusterUrl =
    WebClusterBase + QStringLiteral("/DxSpots.aspx?count=200&range=3");

// Environment values that replace the spot list and the download page.
inline const QString WebClusterUrlVariable = QStringLiteral("ZKR_MUF_WEBCLUSTER_URL");
inline const QString DownloadPageUrlVariable = QStringLiteral("ZKR_MUF_DOWNLOAD_URL");

// Our own pages: none yet. Without a download page there is no update
// check (the environment value or the settings file may name one), and the
// About window shows no links.
inline const QString DownloadPageUrl;
inline const QString HomePageUrl;
inline const QString ContactMailUrl;

// Workstations of the developers: on these the telnet console opens
// minimised at start-up. Chosen so that no ordinary machine is named so.
inline const QString DeveloperWorkstation1 = QStringLiteral("ZKR-DEVWS-7F3A91");
inline const QString DeveloperWorkstation2 = QStringLiteral("ZKR-DEVWS-C2E604");

} // namespace zkr::site
