#include "CountryFile.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <cmath>
#include <string_view>

namespace zkr {

namespace {

struct EntitySize {
    std::string_view prefix;
    short km;
};

// About half the greatest extent of each entity, km, measured from the
// position the country file gives it: how far one of its stations may be
// from there. Rounded up; an island group or a long coast counts whole.
constexpr EntitySize EntitySizes[] = {
    {"1A", 5},      {"1S", 300},    {"3A", 5},     {"3B6", 100},  {"3B8", 50},    {"3B9", 25},
    {"3C", 300},    {"3C0", 10},    {"3D2", 300},  {"3D2/c", 10}, {"3D2/r", 25},  {"3DA", 100},
    {"3V", 450},    {"3W", 900},    {"3X", 350},   {"3Y/b", 10},  {"3Y/p", 25},   {"4J", 250},
    {"4L", 250},    {"4O", 100},    {"4S", 250},   {"4U1I", 5},   {"4U1U", 5},    {"4U1V", 5},
    {"4W", 150},    {"4X", 250},    {"5A", 1000},  {"5B", 150},   {"5H", 600},    {"5N", 600},
    {"5R", 800},    {"5T", 800},    {"5U", 900},   {"5V", 300},   {"5W", 100},    {"5X", 300},
    {"5Z", 500},    {"6W", 300},    {"6Y", 150},   {"7O", 600},   {"7P", 150},    {"7Q", 450},
    {"7X", 1200},   {"8P", 25},     {"8Q", 500},   {"8R", 400},   {"9A", 400},    {"9G", 350},
    {"9H", 25},     {"9J", 600},    {"9K", 125},   {"9L", 200},   {"9M2", 400},   {"9M6", 600},
    {"9N", 450},    {"9Q", 1200},   {"9U", 150},   {"9V", 25},    {"9X", 125},    {"9Y", 100},
    {"A2", 600},    {"A3", 300},    {"A4", 600},   {"A5", 200},   {"A6", 250},    {"A7", 100},
    {"A9", 30},     {"AP", 900},    {"BS7", 10},   {"BV", 250},   {"BV9P", 10},   {"BY", 2500},
    {"C2", 10},     {"C3", 25},     {"C5", 200},   {"C6", 500},   {"C9", 1000},   {"CE", 2200},
    {"CE0X", 25},   {"CE0Y", 25},   {"CE0Z", 100}, {"CE9", 2500}, {"CM", 700},    {"CN", 900},
    {"CP", 700},    {"CT", 300},    {"CT3", 100},  {"CU", 350},   {"CX", 300},    {"CY0", 25},
    {"CY9", 10},    {"D2", 800},    {"D4", 200},   {"D6", 150},   {"DL", 450},    {"DU", 900},
    {"E3", 500},    {"E4", 100},    {"E5/n", 500}, {"E5/s", 500}, {"E6", 25},     {"E7", 200},
    {"EA", 600},    {"EA6", 150},   {"EA8", 300},  {"EA9", 250},  {"EI", 250},    {"EK", 150},
    {"EL", 300},    {"EP", 1100},   {"ER", 250},   {"ES", 200},   {"ET", 800},    {"EU", 350},
    {"EX", 400},    {"EY", 400},    {"EZ", 600},   {"F", 600},    {"FG", 75},     {"FH", 25},
    {"FJ", 10},     {"FK", 300},    {"FK/c", 50},  {"FM", 50},    {"FO", 1500},   {"FO/a", 500},
    {"FO/c", 10},   {"FO/m", 200},  {"FP", 50},    {"FR", 50},    {"FS", 10},     {"FT/g", 25},
    {"FT/j", 300},  {"FT/t", 10},   {"FT/w", 100}, {"FT/x", 100}, {"FT/z", 100},  {"FW", 200},
    {"FY", 250},    {"G", 400},     {"GD", 30},    {"GI", 100},   {"GJ", 15},     {"GM", 300},
    {"GM/s", 75},   {"GU", 25},     {"GW", 150},   {"H4", 700},   {"H40", 250},   {"HA", 250},
    {"HB", 200},    {"HB0", 15},    {"HC", 400},   {"HC8", 250},  {"HH", 200},    {"HI", 250},
    {"HK", 900},    {"HK0/a", 75},  {"HK0/m", 10}, {"HL", 300},   {"HP", 350},    {"HR", 350},
    {"HS", 900},    {"HV", 5},      {"HZ", 1200},  {"I", 650},    {"IG9", 150},   {"IS", 150},
    {"IT9", 200},   {"J2", 100},    {"J3", 25},    {"J5", 200},   {"J6", 25},     {"J7", 25},
    {"J8", 75},     {"JA", 1300},   {"JD/m", 10},  {"JD/o", 100}, {"JT", 1200},   {"JW", 350},
    {"JW/b", 25},   {"JX", 40},     {"JY", 300},   {"K", 2700},   {"KG4", 25},    {"KH0", 400},
    {"KH1", 100},   {"KH2", 50},    {"KH3", 10},   {"KH4", 10},   {"KH5", 200},   {"KH6", 350},
    {"KH7K", 10},   {"KH8", 100},   {"KH8/s", 10}, {"KH9", 10},   {"KL", 1200},   {"KP1", 10},
    {"KP2", 75},    {"KP4", 150},   {"KP5", 10},   {"LA", 1500},  {"LU", 1800},   {"LX", 60},
    {"LY", 200},    {"LZ", 250},    {"OA", 1000},  {"OD", 125},   {"OE", 300},    {"OH", 1000},
    {"OH0", 75},    {"OJ0", 5},     {"OK", 300},   {"OM", 250},   {"ON", 175},    {"OX", 1600},
    {"OY", 100},    {"OZ", 350},    {"P2", 900},   {"P4", 25},    {"P5", 400},    {"PA", 200},
    {"PJ2", 40},    {"PJ4", 25},    {"PJ5", 100},  {"PJ7", 10},   {"PY", 2300},   {"PY0F", 25},
    {"PY0S", 10},   {"PY0T", 75},   {"PZ", 300},   {"R1FJ", 300}, {"S0", 600},    {"S2", 400},
    {"S5", 200},    {"S7", 600},    {"S9", 150},   {"SM", 1200},  {"SP", 450},    {"ST", 1000},
    {"SU", 800},    {"SV", 450},    {"SV/a", 25},  {"SV5", 200},  {"SV9", 150},   {"T2", 300},
    {"T30", 400},   {"T31", 500},   {"T32", 500},  {"T33", 10},   {"T5", 900},    {"T7", 10},
    {"T8", 300},    {"TA", 900},    {"TA1", 200},  {"TF", 300},   {"TG", 250},    {"TI", 250},
    {"TI9", 10},    {"TJ", 700},    {"TK", 100},   {"TL", 700},   {"TN", 500},    {"TR", 400},
    {"TT", 1000},   {"TU", 400},    {"TY", 350},   {"TZ", 1000},  {"UA", 2200},   {"UA2", 125},
    {"UA9", 3500},  {"UK", 700},    {"UN", 1500},  {"UR", 700},   {"V2", 50},     {"V3", 200},
    {"V4", 25},     {"V5", 800},    {"V6", 1500},  {"V7", 700},   {"V8", 75},     {"VE", 3000},
    {"VK", 2200},   {"VK0H", 25},   {"VK0M", 25},  {"VK9C", 25},  {"VK9L", 25},   {"VK9M", 10},
    {"VK9N", 25},   {"VK9W", 10},   {"VK9X", 25},  {"VP2E", 25},  {"VP2M", 10},   {"VP2V", 40},
    {"VP5", 150},   {"VP6", 150},   {"VP6/d", 10}, {"VP8", 200},  {"VP8/g", 150}, {"VP8/h", 300},
    {"VP8/o", 150}, {"VP8/s", 250}, {"VP9", 25},   {"VQ9", 150},  {"VR", 50},     {"VU", 1700},
    {"VU4", 500},   {"VU7", 250},   {"XE", 1700},  {"XF4", 300},  {"XT", 400},    {"XU", 300},
    {"XW", 500},    {"XX9", 10},    {"XZ", 1100},  {"YA", 700},   {"YB", 2700},   {"YI", 500},
    {"YJ", 450},    {"YK", 400},    {"YL", 250},   {"YN", 300},   {"YO", 350},    {"YS", 150},
    {"YU", 300},    {"YV", 800},    {"YV0", 5},    {"Z2", 500},   {"Z3", 125},    {"Z6", 75},
    {"Z8", 600},    {"ZA", 200},    {"ZB", 5},     {"ZC4", 30},   {"ZD7", 25},    {"ZD8", 25},
    {"ZD9", 400},   {"ZF", 125},    {"ZK3", 150},  {"ZL", 900},   {"ZL7", 75},    {"ZL8", 250},
    {"ZL9", 400},   {"ZP", 500},    {"ZS", 1000},  {"ZS8", 50},
};

constexpr double UnknownEntityKm = 1000;

// Suffixes that say how, not where, a station works.
constexpr std::u16string_view Modifiers[] = {u"P",  u"M",  u"QRP",  u"QRPP", u"LH",
                                             u"A",  u"B",  u"J",    u"LGT",  u"AE",
                                             u"AG", u"FF", u"YOTA", u"SOTA", u"POTA"};

bool isModifier(QStringView part) {
    return std::any_of(std::begin(Modifiers), std::end(Modifiers), [part](auto modifier) {
        return part == QStringView(modifier.data(), static_cast<qsizetype>(modifier.size()));
    });
}

bool isDigit(QChar c) {
    return c >= QLatin1Char('0') && c <= QLatin1Char('9');
}

std::string_view trimmed(std::string_view text) {
    const auto blank = [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; };
    while (!text.empty() && blank(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && blank(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

std::optional<double> number(std::string_view text) {
    text = trimmed(text);
    bool ok = false;
    const double value =
        QByteArray::fromRawData(text.data(), static_cast<qsizetype>(text.size())).toDouble(&ok);
    return ok && std::isfinite(value) ? std::optional<double>(value) : std::nullopt;
}

// Positions in the file are positive to the West; ours to the East.
std::optional<GeoPoint> filePosition(std::string_view latitude, std::string_view westLongitude) {
    const auto lat = number(latitude);
    const auto lon = number(westLongitude);
    if (!lat || !lon || std::fabs(*lat) > 90 || std::fabs(*lon) > 180) {
        return std::nullopt;
    }
    return GeoPoint{*lat, -*lon};
}

QString latin1(std::string_view text) {
    return QString::fromLatin1(text.data(), static_cast<qsizetype>(text.size()));
}

} // namespace

QStringList CountryFile::candidatePaths(const QString &programDataDir) {
    QStringList paths;
    if (!programDataDir.isEmpty()) {
        paths << QDir(programDataDir).filePath(QStringLiteral("cty.dat"));
    }
    paths << QStringLiteral("/usr/share/hamradio-files/cty.dat")
          << QStringLiteral("/usr/local/share/hamradio-files/cty.dat");
    return paths;
}

double CountryFile::uncertaintyKm(QStringView mainPrefix) {
    for (const EntitySize &size : EntitySizes) {
        if (mainPrefix ==
            QLatin1StringView(size.prefix.data(), static_cast<qsizetype>(size.prefix.size()))) {
            return size.km;
        }
    }
    return UnknownEntityKm;
}

bool CountryFile::load(const QString &path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *this = CountryFile();
        error_ =
            QStringLiteral("cannot read the country file %1: %2").arg(path, file.errorString());
        return false;
    }
    const QByteArray text = file.readAll();
    if (!parse(text)) {
        error_ = QStringLiteral("%1 holds no country in the CTY format").arg(path);
        return false;
    }
    return true;
}

bool CountryFile::parse(QByteArrayView text) {
    *this = CountryFile();
    // About 1 entry in 15 characters: the maps are built without rehashing.
    exact_.reserve(static_cast<std::size_t>(text.size() / 15));
    prefixes_.reserve(static_cast<std::size_t>(text.size() / 40));
    const std::string_view all(text.data(), static_cast<std::size_t>(text.size()));
    std::size_t at = 0;
    while (at < all.size()) {
        std::size_t end = all.find(';', at);
        if (end == std::string_view::npos) {
            end = all.size();
        }
        std::string_view record = all.substr(at, end - at);
        at = end + 1;
        // The eight fields of the entity line, each ended by ":".
        std::string_view fields[8];
        bool complete = true;
        for (std::string_view &field : fields) {
            const std::size_t colon = record.find(':');
            if (colon == std::string_view::npos) {
                complete = false;
                break;
            }
            field = trimmed(record.substr(0, colon));
            record.remove_prefix(colon + 1);
        }
        const auto position = complete ? filePosition(fields[4], fields[5]) : std::nullopt;
        if (!position) {
            continue;
        }
        std::string_view prefix = fields[7];
        if (!prefix.empty() && prefix.front() == '*') {
            prefix.remove_prefix(1); // on the WAE list only
        }
        const int country = static_cast<int>(countries_.size());
        const QString mainPrefix = latin1(prefix);
        countries_.push_back(
            Country{latin1(fields[0]), mainPrefix, *position, uncertaintyKm(mainPrefix)});

        while (!record.empty()) {
            const std::size_t comma = record.find(',');
            std::string_view entry = trimmed(record.substr(0, comma));
            record.remove_prefix(comma == std::string_view::npos ? record.size() : comma + 1);
            const bool exactCall = !entry.empty() && entry.front() == '=';
            if (exactCall) {
                entry.remove_prefix(1);
            }
            const std::size_t overrides = entry.find_first_of("([<{~");
            Target target{country, -1};
            if (overrides != std::string_view::npos) {
                const std::size_t open = entry.find('<', overrides);
                const std::size_t slash = entry.find('/', open);
                const std::size_t close = entry.find('>', open);
                if (open != std::string_view::npos && slash < close &&
                    close != std::string_view::npos) {
                    const auto own = filePosition(entry.substr(open + 1, slash - open - 1),
                                                  entry.substr(slash + 1, close - slash - 1));
                    if (own) {
                        target.position = static_cast<int>(positions_.size());
                        positions_.push_back(*own);
                    }
                }
                entry = entry.substr(0, overrides);
            }
            const auto key = CallKey::pack(
                QLatin1StringView(entry.data(), static_cast<qsizetype>(entry.size())));
            if (!key) {
                continue;
            }
            bool inserted = false;
            if (exactCall) {
                exact_.insert(*key, inserted) = target;
            } else {
                Target &kept = prefixes_.insert(*key, inserted);
                if (inserted) {
                    kept = target; // the first entity to name a prefix keeps it
                }
                longestPrefix_ = std::max(longestPrefix_, static_cast<int>(entry.size()));
            }
        }
    }
    if (countries_.empty()) {
        error_ = QStringLiteral("no country in the CTY format");
        return false;
    }
    return true;
}

const CountryFile::Target *CountryFile::exact(QStringView call) const {
    const auto key = CallKey::pack(call);
    return key ? exact_.find(*key) : nullptr;
}

const CountryFile::Target *CountryFile::longestPrefix(QStringView text) const {
    const auto key = CallKey::pack(text.left(std::min<qsizetype>(text.size(), longestPrefix_)));
    if (!key) {
        return nullptr;
    }
    for (int length = static_cast<int>(std::min<qsizetype>(text.size(), longestPrefix_));
         length > 0; --length) {
        if (const Target *target = prefixes_.find(key->prefix(length))) {
            return target;
        }
    }
    return nullptr;
}

CountryPosition CountryFile::positionOf(const Target &target) const {
    const Country &country = countries_[static_cast<std::size_t>(target.country)];
    const GeoPoint position = target.position < 0
                                  ? country.position
                                  : positions_[static_cast<std::size_t>(target.position)];
    return CountryPosition{country.name, country.prefix, position, country.uncertaintyKm};
}

std::optional<CountryPosition> CountryFile::find(QStringView call) const {
    if (call.isEmpty() || isMaritimeOrAir(call)) {
        return std::nullopt;
    }
    if (const Target *target = exact(call)) {
        return positionOf(*target);
    }
    // The parts that say where: "DL1ABC/P/QRP" is DL1ABC.
    QStringView parts[4];
    int count = 0;
    for (const QStringView part : call.split(QLatin1Char('/'))) {
        if (part.isEmpty() || (count > 0 && isModifier(part))) {
            continue;
        }
        if (count == 4) {
            return std::nullopt;
        }
        parts[count++] = part;
    }
    if (count == 0) {
        return std::nullopt;
    }
    QStringView where = parts[0];
    QString renumbered;
    if (count > 1) {
        const QStringView *area = std::find_if(parts + 1, parts + count, [](QStringView part) {
            return part.size() == 1 && isDigit(part[0]);
        });
        if (area != parts + count) {
            // A call area: "UA9ABC/1" works from UA1. Its digit replaces
            // the last digit of the call.
            renumbered = parts[0].toString();
            for (qsizetype i = renumbered.size() - 1; i >= 0; --i) {
                if (isDigit(renumbered[i])) {
                    renumbered[i] = (*area)[0];
                    break;
                }
            }
            where = renumbered;
        } else {
            // "EA8/DL1ABC", "DL1ABC/EA8": the shorter part is the prefix.
            where = *std::min_element(parts, parts + count, [](QStringView a, QStringView b) {
                return a.size() < b.size();
            });
        }
    }
    if (where.size() != call.size()) {
        if (const Target *target = exact(where)) {
            return positionOf(*target);
        }
    }
    if (const Target *target = longestPrefix(where)) {
        return positionOf(*target);
    }
    return std::nullopt;
}

} // namespace zkr
