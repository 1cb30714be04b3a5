#pragma once

#include <QDateTime>
#include <QLatin1StringView>
#include <QList>
#include <QMetaType>
#include <QString>

#include <cstdint>
#include <optional>

namespace zkr {

// A piece of printed text in one colour (&H00BBGGRR).
struct TextRun {
    QString text;
    std::uint32_t colour = 0;

    friend bool operator==(const TextRun &, const TextRun &) = default;
};

// The Es path of a computed spot, as seen from the own station.
struct EsPath {
    QString cloud;        // square of the path midpoint, where the cloud sits (6 characters)
    double muf = 0;       // Es MUF of the spot path, MHz
    double critical = 0;  // Es critical frequency, MHz
    double ownMuf = 0;    // MUF from the own station via the cloud (the FOT field), MHz
    double azimuth = 0;   // own station towards the cloud, degrees
    double elevation = 0; // of the cloud above the own horizon, degrees
    QString far;          // where a hop from the own station via the cloud comes down
    double pathKm = 0;    // length of the spot path
    double ownKm = 0;     // own station to the cloud

    friend bool operator==(const EsPath &, const EsPath &) = default;
};

// Where a cluster spot came from.
enum class SpotSource : quint8 { Cluster, File, Web };
// "cluster", "file", "web": as the JSON lines, the map and the history say it.
QLatin1StringView spotSourceName(SpotSource source);

// How one end of a path was located.
enum class Located : quint8 {
    Comment,  // a locator in the spot's comment
    CallBook, // the call's locator, learned from reports and spots
    Country,  // the position of the call's country
};
// "comment", "callbook", "country".
QLatin1StringView locatedName(Located how);

// A path for a spot whose comment did not name both ends, found through the
// call book or the country file. It is approximate: the panes never print
// it, the map draws it lighter, and the Es watch lets it raise "rising" at
// most.
struct ApproximatePath {
    EsPath es;
    QString spotterLocator; // where the spotter (the receiving end) was put
    QString dxLocator;      // where the DX station was put
    Located spotter = Located::Comment;
    Located dx = Located::Comment;
    double uncertaintyKm = 0; // the larger of the two ends' uncertainties

    friend bool operator==(const ApproximatePath &, const ApproximatePath &) = default;
};

// One spot after evaluation: what the line said, what was computed, and
// what was printed where. Every subscriber (panes, console, headless tool,
// alerts, history) works from this value alone.
struct EvaluatedSpot {
    QString line; // the line as analysed and printed (prefix removed, mode words bracketed)
    QString spotter;
    float frequency = 0; // MHz, as the Es computation, the filters and the panes read it
    // MHz, the number as written in the frequency column: what the JSON,
    // CSV and history report.
    double frequencyMhz = 0;
    QString dxCall;
    QString comment;
    QString time;
    QString tail1;
    QString tail2;
    QString locator1; // as found in the comment; a square alone ends in "??"
    QString locator2;
    QString mode; // "ES", "MS", "TR", "EME", "SAT", "MUF", or "??" for none
    // Present when the Es path was computed: two different locators and an
    // Es spot (or any unmarked spot when all spots are evaluated).
    std::optional<EsPath> es;
    // The printed line, its CR LF line end as the last run; empty when the
    // filters printed nothing.
    QList<TextRun> runs;
    unsigned panes = 0;           // bit i: pane i (All, VHF, 2m, Es) took the runs
    bool esResultPrinted = false; // Es results went into the panes
    QString error;                // why evaluation stopped early, "" when it did not
    QDateTime received;           // UTC, when the line or page came in
    SpotSource source = SpotSource::Cluster;
    // Without `es`: a path through the call book or the country file.
    std::optional<ApproximatePath> approximate;

    // When the spot was made: the line's hhmmZ on the day it was received
    // (the day before when that would lie more than an hour ahead), or the
    // time received when the line gives no time.
    QDateTime spotTimeUtc() const;

    friend bool operator==(const EvaluatedSpot &, const EvaluatedSpot &) = default;
};

} // namespace zkr

Q_DECLARE_METATYPE(zkr::EvaluatedSpot)
