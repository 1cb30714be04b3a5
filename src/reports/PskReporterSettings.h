#pragma once

#include <QString>
#include <QStringList>

namespace zkr {

// The [PSKReporter] section of zkr_muf.ini:
//   Enabled=on                 listen to the live feed
//   Host=mqtt.pskreporter.info the MQTT broker
//   Port=1883
//   Bands=6m,4m,2m             PSK Reporter's band names; "all" for every band
//   AllReports=off             on: keep reports whatever the distance of their cloud
struct PskReporterSettings {
    static inline const QString Section = QStringLiteral("PSKReporter");
    static inline const QString DefaultHost = QStringLiteral("mqtt.pskreporter.info");
    static constexpr quint16 DefaultPort = 1883;

    bool enabled = true;
    QString host = DefaultHost;
    quint16 port = DefaultPort;
    QStringList bands = {QStringLiteral("6m"), QStringLiteral("4m"), QStringLiteral("2m")};
    bool allReports = false;

    // Reads the section from the settings file; a missing or unusable value
    // keeps its default.
    static PskReporterSettings read(const QString &iniPath);
    // Writes the section; false when the file could not be written.
    bool write(const QString &iniPath) const;

    friend bool operator==(const PskReporterSettings &, const PskReporterSettings &) = default;
};

} // namespace zkr
