#pragma once

#include "EvaluatedSpot.h"

#include <QDateTime>
#include <QLatin1StringView>
#include <QMetaType>
#include <QString>

#include <optional>

namespace zkr {

// Where a reception report came from.
enum class ReportSource : quint8 {
    Wsjtx,       // a decode of WSJT-X or JTDX at the own station, live over UDP
    AllTxt,      // a line of their decode log, replayed
    PskReporter, // a report of the PSK Reporter live feed
};

// "wsjtx", "alltxt", "pskreporter": the names of the JSON lines, the CSV and
// the history.
QLatin1StringView reportSourceName(ReportSource source);
std::optional<ReportSource> reportSourceFromName(QStringView name);

struct ReportStation {
    QString call;
    // As the report gave it, upper-cased and cut to six characters: a
    // square alone stays four characters and is taken at its centre.
    QString locator;

    friend bool operator==(const ReportStation &, const ReportStation &) = default;
};

// One station heard by another (an FT8 decode, a PSK Reporter report): both
// ends' calls and locators, when and on what it was heard, and the Es path
// between them seen from the own station, computed by the same model as a
// cluster spot's.
struct Reception {
    ReportSource source = ReportSource::Wsjtx;
    QDateTime time;         // UTC, whole seconds: when it was heard
    double frequencyMhz = 0; // the signal's frequency (dial + audio offset)
    QString mode;           // "FT8", "FT4", ...
    std::optional<int> snr; // dB, when known
    ReportStation tx;       // the station heard
    ReportStation rx;       // the station that heard it
    // Heard by the own station's decoder (not by someone else).
    bool atOwnStation = false;
    // Present when both locators are known: the path from tx to rx.
    std::optional<EsPath> es;
    QDateTime received; // UTC, when the report reached the program

    // The path is a single Es hop: 600 to 2,300 km.
    bool isEsHop() const;

    friend bool operator==(const Reception &, const Reception &) = default;
};

// The shortest and longest path of one Es hop, km.
inline constexpr double EsHopMinKm = 600;
inline constexpr double EsHopMaxKm = 2300;

// Computes the report's Es path from its two locators for the own station
// (a locator of 4 or 6 characters; a square alone is its centre). Leaves
// `es` empty when a locator is missing or wrong or the own locator is, or
// when the path model faults. Returns whether a path was computed.
bool Evaluate_Reception(Reception &report, const QString &ownLocator);

} // namespace zkr

Q_DECLARE_METATYPE(zkr::Reception)
