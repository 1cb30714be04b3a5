#include "PskReporterSettings.h"

#include "IniFile.h"
#include "PskReporterPayload.h"

namespace zkr {

namespace {

void readSwitch(const IniFile &ini, QStringView key, bool &value) {
    const QString word = ini.value(PskReporterSettings::Section, key).value_or(QString()).toLower();
    if (word == QLatin1String("on")) {
        value = true;
    } else if (word == QLatin1String("off")) {
        value = false;
    }
}

QString switchWord(bool value) {
    return value ? QStringLiteral("on") : QStringLiteral("off");
}

} // namespace

PskReporterSettings PskReporterSettings::read(const QString &iniPath) {
    const IniFile ini = IniFile::load(iniPath);
    PskReporterSettings settings;
    readSwitch(ini, u"Enabled", settings.enabled);
    readSwitch(ini, u"AllReports", settings.allReports);
    const QString host = ini.value(Section, u"Host").value_or(QString());
    if (!host.isEmpty()) {
        settings.host = host;
    }
    bool ok = false;
    const uint port = ini.value(Section, u"Port").value_or(QString()).toUInt(&ok);
    if (ok && port > 0 && port <= 65535) {
        settings.port = static_cast<quint16>(port);
    }
    const QStringList bands = pskReporterBands(ini.value(Section, u"Bands").value_or(QString()));
    if (!bands.isEmpty()) {
        settings.bands = bands;
    }
    return settings;
}

bool PskReporterSettings::write(const QString &iniPath) const {
    IniFile ini = IniFile::load(iniPath);
    ini.setValue(Section, QStringLiteral("Enabled"), switchWord(enabled));
    ini.setValue(Section, QStringLiteral("Host"), host);
    ini.setValue(Section, QStringLiteral("Port"), QString::number(port));
    ini.setValue(Section, QStringLiteral("Bands"), bands.join(u','));
    ini.setValue(Section, QStringLiteral("AllReports"), switchWord(allReports));
    return ini.save(iniPath);
}

} // namespace zkr
