#pragma once

#include "CallKeyTable.h"
#include "CallSigns.h"
#include "Locators.h"

#include <QByteArrayView>
#include <QString>
#include <QStringList>
#include <QStringView>

#include <optional>
#include <vector>

namespace zkr {

// Where a call's country puts it.
struct CountryPosition {
    QString country; // the entity's name, as the file writes it
    QString prefix;  // its main prefix ("EA8", "DL"; "*" of WAE-only entities dropped)
    GeoPoint position;
    // How far from `position` a station of the country may be, km (see
    // CountryFile::uncertaintyKm).
    double uncertaintyKm = 0;
};

// The amateur country file in the CTY format (cty.dat): for each entity a
// line "name: CQ: ITU: continent: latitude: longitude: UTC offset: prefix:"
// (longitude positive to the West), then its prefixes and exact calls
// ("=CALL"), separated by commas, up to a ";". An entry may carry overrides:
// (CQ zone), [ITU zone], <latitude/longitude>, {continent}, ~UTC offset~;
// only the position override matters here.
class CountryFile {
public:
    // Where the file is looked for, in order: beside the program's data, then
    // where Debian ("hamradio-files") and other distributions install it.
    static QStringList candidatePaths(const QString &programDataDir);

    // Replaces what was loaded. False, with errorString() saying why and
    // nothing loaded, when the file cannot be read or holds no entity.
    bool load(const QString &path);
    bool parse(QByteArrayView text);
    QString errorString() const { return error_; }
    bool isLoaded() const { return !countries_.empty(); }
    qsizetype countryCount() const { return static_cast<qsizetype>(countries_.size()); }

    // The country of a call (normalised, see normalisedCall): its exact
    // entry, else by the usual rules for portable calls, the longest prefix.
    // "EA8/DL1ABC" and "DL1ABC/EA8" are in EA8; "DL1ABC/P" in DL; "UA9ABC/1"
    // is looked up as "UA1ABC". Nothing for /MM and /AM calls, and for calls
    // no prefix of the file begins.
    std::optional<CountryPosition> find(QStringView call) const;

    // How far stations of an entity lie from its position: about half its
    // greatest extent, from a table of the entities (by main prefix); 1,000
    // km for one the table does not know, so an unknown entity is never
    // "near enough" for a path.
    static double uncertaintyKm(QStringView mainPrefix);

private:
    struct Country {
        QString name;
        QString prefix;
        GeoPoint position;
        double uncertaintyKm = 0;
    };
    struct Target {
        int country = 0;
        int position = -1; // the entry's own <lat/lon> in positions_, or none
    };

    const Target *exact(QStringView call) const;
    const Target *longestPrefix(QStringView text) const;
    CountryPosition positionOf(const Target &target) const;

    std::vector<Country> countries_;
    std::vector<GeoPoint> positions_;
    CallKeyTable<Target> exact_;
    CallKeyTable<Target> prefixes_;
    int longestPrefix_ = 0;
    QString error_;
};

} // namespace zkr
