#include "WsjtxSettings.h"

#include "IniFile.h"

namespace zkr {

WsjtxSettings WsjtxSettings::read(const QString &iniPath) {
    const IniFile ini = IniFile::load(iniPath);
    const auto value = [&](const char *key) {
        return ini.value(Section, QString::fromLatin1(key)).value_or(QString()).trimmed();
    };
    WsjtxSettings settings;
    const QString enabled = value("Enabled").toLower();
    if (enabled == QLatin1String("off") || enabled == QLatin1String("on")) {
        settings.enabled = enabled == QLatin1String("on");
    }
    if (const QString address = value("Address"); !address.isEmpty()) {
        settings.address = address;
    }
    bool ok = false;
    const uint port = value("Port").toUInt(&ok);
    if (ok && port >= 1 && port <= 65535) {
        settings.port = static_cast<quint16>(port);
    }
    settings.multicastGroup = value("MulticastGroup");
    return settings;
}

bool WsjtxSettings::write(const QString &iniPath) const {
    const auto put = [&](const char *key, const QString &text) {
        return Ini_Write(Section, QLatin1String(key), text, iniPath) == QLatin1String("1");
    };
    // Every key, also when an earlier one failed: a full disk is no reason
    // to lose the rest.
    bool ok = put("Enabled", enabled ? QStringLiteral("on") : QStringLiteral("off"));
    ok = put("Address", address) && ok;
    ok = put("Port", QString::number(port)) && ok;
    return put("MulticastGroup", multicastGroup) && ok;
}

} // namespace zkr
