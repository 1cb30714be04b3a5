#pragma once

#include <QString>

namespace zkr {

// The three run modes, as RunMode holds them.
inline const QString WebMode = QStringLiteral("WEBCLUSTER");
inline const QString TelnetMode = QStringLiteral("TELNETCLUSTER");
inline const QString FileMode = QStringLiteral("FILE");

} // namespace zkr
