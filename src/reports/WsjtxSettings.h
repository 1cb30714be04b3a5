#pragma once

#include <QString>

namespace zkr {

// The [WSJTX] section of zkr_muf.ini: where the decodes of WSJT-X and JTDX
// arrive.
//   Enabled=on            listen at all ("on" / "off")
//   Address=127.0.0.1     the address WSJT-X sends to (its "UDP Server")
//   Port=2237             its port
//   MulticastGroup=       a group such as 239.255.0.1 instead, so that
//                         other programs can listen to the same decodes
struct WsjtxSettings {
    static constexpr quint16 DefaultPort = 2237;

    bool enabled = true;
    QString address = QStringLiteral("127.0.0.1");
    quint16 port = DefaultPort;
    QString multicastGroup;

    static inline const QString Section = QStringLiteral("WSJTX");
    // Missing or unusable values keep their default.
    static WsjtxSettings read(const QString &iniPath);
    // False when the file could not be written.
    bool write(const QString &iniPath) const;

    friend bool operator==(const WsjtxSettings &, const WsjtxSettings &) = default;
};

} // namespace zkr
