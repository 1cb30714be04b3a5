#pragma once

#include <QString>

namespace zkr {

// The levels a cloud can reach for the own station, ranked: a cloud's level
// is the highest it holds, and the strip shows the cloud of the highest
// level. "rising" is the forerunner of a 2 m opening, so it ranks above
// everything on 6 m and 4 m.
enum class WatchLevel : int {
    None = 0,
    Open50,
    Confirmed50,
    Open70,
    Confirmed70,
    Rising,
    Open144,
    Confirmed144,
};
inline constexpr int WatchLevelCount = 8; // None included

// "rising", "2 m open", "confirmed", "6 m open", ...
QString watchLevelName(WatchLevel level);

// What the user wants to be told about: bands (thresholds 50, 70 and
// 144 MHz), the kinds of level, and whether an alert sounds. The defaults
// alert for 144 MHz only.
struct WatchSettings {
    bool band50 = false;
    bool band70 = false;
    bool band144 = true;
    bool rising = true;
    bool open = true;
    bool confirmed = true;
    bool sound = true;

    // Whether a level counts at all with these settings.
    bool enabled(WatchLevel level) const;

    // The settings file's section and its keys ("on" / "off").
    static inline const QString Section = QStringLiteral("EsWatch");
    // Reads the section from the settings file; missing keys keep their
    // default.
    static WatchSettings read(const QString &iniPath);
    // Writes the section; false when the file could not be written.
    bool write(const QString &iniPath) const;

    friend bool operator==(const WatchSettings &, const WatchSettings &) = default;
};

} // namespace zkr
