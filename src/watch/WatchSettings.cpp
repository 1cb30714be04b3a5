#include "WatchSettings.h"

#include "IniFile.h"

#include <array>
#include <utility>

namespace zkr {

namespace {

// Every switch of the section with its key, in the file's order.
std::array<std::pair<const char *, bool WatchSettings::*>, 7> switches() {
    return {{{"Band50", &WatchSettings::band50},
             {"Band70", &WatchSettings::band70},
             {"Band144", &WatchSettings::band144},
             {"Rising", &WatchSettings::rising},
             {"Open", &WatchSettings::open},
             {"Confirmed", &WatchSettings::confirmed},
             {"Sound", &WatchSettings::sound}}};
}

} // namespace

QString watchLevelName(WatchLevel level) {
    switch (level) {
    case WatchLevel::None:
        return QString();
    case WatchLevel::Open50:
        return QStringLiteral("6 m open");
    case WatchLevel::Confirmed50:
        return QStringLiteral("6 m confirmed");
    case WatchLevel::Open70:
        return QStringLiteral("4 m open");
    case WatchLevel::Confirmed70:
        return QStringLiteral("4 m confirmed");
    case WatchLevel::Rising:
        return QStringLiteral("rising");
    case WatchLevel::Open144:
        return QStringLiteral("2 m open");
    case WatchLevel::Confirmed144:
        return QStringLiteral("confirmed");
    }
    return QString();
}

bool WatchSettings::enabled(WatchLevel level) const {
    switch (level) {
    case WatchLevel::None:
        return false;
    case WatchLevel::Open50:
        return band50 && open;
    case WatchLevel::Confirmed50:
        return band50 && confirmed;
    case WatchLevel::Open70:
        return band70 && open;
    case WatchLevel::Confirmed70:
        return band70 && confirmed;
    case WatchLevel::Rising:
        return band144 && rising;
    case WatchLevel::Open144:
        return band144 && open;
    case WatchLevel::Confirmed144:
        return band144 && confirmed;
    }
    return false;
}

WatchSettings WatchSettings::read(const QString &iniPath) {
    const IniFile ini = IniFile::load(iniPath);
    WatchSettings settings;
    for (const auto &[key, member] : switches()) {
        const std::optional<QString> value = ini.value(Section, QString::fromLatin1(key));
        if (!value) {
            continue;
        }
        const QString word = value->trimmed().toLower();
        if (word == QLatin1String("on")) {
            settings.*member = true;
        } else if (word == QLatin1String("off")) {
            settings.*member = false;
        }
    }
    return settings;
}

bool WatchSettings::write(const QString &iniPath) const {
    bool ok = true;
    for (const auto &[key, member] : switches()) {
        ok = Ini_Write(Section, QLatin1String(key),
                       this->*member ? QStringLiteral("on") : QStringLiteral("off"),
                       iniPath) == QLatin1String("1") &&
             ok;
    }
    return ok;
}

} // namespace zkr
