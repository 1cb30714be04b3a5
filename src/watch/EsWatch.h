#pragma once

#include "EvaluatedSpot.h"
#include "Reception.h"
#include "WatchSettings.h"

#include <QDateTime>
#include <QHash>
#include <QObject>

#include <array>
#include <deque>
#include <functional>
#include <optional>
#include <vector>

namespace zkr {

// One piece of evidence of a cloud, a cluster spot or a reception report,
// as much as the strip, the map and a tooltip need.
struct WatchSpot {
    QDateTime time; // when it was made or heard (see EsWatch::setSpotTimeClock)
    // "cluster", "file", "web" for spots; "wsjtx", "alltxt", "pskreporter"
    // for reports.
    QString source;
    QString receiver;          // the spotter, or the station that decoded it
    QString heard;             // the DX call, or the station heard
    QString heardLocator;      // the heard station's locator when it is known
    double frequency = 0;      // MHz
    std::optional<int> snr;    // dB, reports only
    bool atOwnStation = false; // decoded by the own station
    bool approximate = false;  // a path through the call book or the country file
    bool esMode = false;       // marked as an Es spot, or a report over one Es hop
    // A spot's line as printed in the panes, without its line end; a
    // report's one-line summary.
    QString printed;
    EsPath es;

    bool isReport() const;
    // A report heard by someone else, or an approximate path: the first to go
    // from a full cloud.
    int weight() const;
};

// A cloud seen in the last CloudKeptSecs: its spots (newest first) and what
// they say now.
struct WatchCloud {
    QString square;     // 4 characters
    QDateTime lastSpot; // time of the newest spot
    // The cloud's reading: over its spots of the ReadingSecs up to its
    // newest spot, while it is live (0 when it is not).
    double muf = 0; // highest Es MUF of a spot path through the cloud
    // Highest MUF from the own station via the cloud: of the exact paths,
    // of the approximate ones when there are no others.
    double ownMuf = 0;
    // The live spot with the highest own MUF, else the newest spot: its
    // course, elevation, far square and distance.
    EsPath best;
    bool bestApproximate = false;        // `best` is an approximate path
    WatchLevel level = WatchLevel::None; // highest enabled level held now
    unsigned levels = 0;                 // bit (int)level for every level held now
    bool live = false;                   // a spot in the last CloudLiveSecs
    // Every spot kept has an approximate path: a hollow marker on the map.
    bool approximate = false;
    // The strip's words for the newest decode at the own station in the
    // reading, "heard EA7ABC IM76 on 50.313 via IN99"; "" for none.
    QString heardHere;
    std::deque<WatchSpot> spots;
    // The highest Es MUF of every spot kept, for the map's colour.
    double keptMuf() const;
    // Above the own horizon: the own MUF is computed.
    bool inRange() const { return ownMuf > 0; }
};

// Watches the evaluated spots and the reception reports for the Es clouds
// that serve the own station, decides the levels they reach and says when a
// level is reached.
//
// A band (6 m, 4 m, 2 m) is "open" via a cloud above the own horizon when
// the own MUF via it reaches the band, and "confirmed" when, besides, an Es
// spot or a report over one Es hop on that band went through the cloud. A
// decode at the own station over one Es hop confirms its band on its own.
// Approximate paths raise "rising" at most.
//
// A cloud is keyed by the 4-character square of the path midpoint. It
// counts for CloudLiveSecs after its last spot and is kept (for the map)
// for CloudKeptSecs. A level reached again within NoRepeatSecs of its last
// alert (a reading going up and down around a threshold) is not announced. Each cloud keeps at most
// MaxSpotsPerCloud spots, and clouds are dropped once too old, so the cost of a spot does not grow
// with the length of the run.
//
// Time comes from a clock: the wall clock (UTC) for live sources, or the
// spots' own times for a replayed file, where the latest spot time seen is
// "now" (else a recorded opening would expire all at once).
class EsWatch : public QObject {
    Q_OBJECT
public:
    static constexpr qint64 CloudLiveSecs = 15 * 60;
    static constexpr qint64 CloudKeptSecs = 30 * 60;
    // A cloud reads what its spots of the last 5 minutes before its newest
    // say: a falling MUF shows as it falls, and one odd path does not decide
    // alone.
    static constexpr qint64 ReadingSecs = 5 * 60;
    static constexpr qint64 NoRepeatSecs = 10 * 60;
    static constexpr std::size_t MaxSpotsPerCloud = 20;
    // Reports count in the bands the watch knows; frequency ranges in MHz.
    struct Band {
        WatchLevel open;
        WatchLevel confirmed;
        int threshold; // the own MUF that opens the band
        double low;
        double high;
    };
    static const std::array<Band, 3> Bands; // 6 m, 4 m, 2 m
    // The band of a frequency, or -1.
    static int bandOf(double mhz);
    // The band of a level: 0 for 6 m, 1 for 4 m, 2 for 2 m ("rising"
    // included).
    static int bandOf(WatchLevel level);
    // The own MUF from which a cloud is "rising" towards 2 m.
    static constexpr int RisingMHz = 100;

    explicit EsWatch(QObject *parent = nullptr);

    void setSettings(const WatchSettings &settings);
    const WatchSettings &settings() const { return settings_; }
    // Live sources: "now" is this clock (UTC).
    void setWallClock(std::function<QDateTime()> clock);
    // Replayed files: "now" is the latest spot time seen.
    void setSpotTimeClock();
    bool usesSpotTime() const { return !clock_; }
    QDateTime now() const;

    // Takes a spot; only Es results that are not doubtful count, an exact
    // path first, else the approximate one.
    void addSpot(const EvaluatedSpot &spot);
    // A spot restored from the history: it rebuilds its cloud without
    // announcing anything (its alerts were given in the run that heard it).
    void restoreSpot(const EvaluatedSpot &spot);
    // Takes a report over one Es hop on a band of the watch.
    void addReport(const Reception &report);
    // A report restored from the history: its cloud comes back without
    // alerts, as a restored spot's does.
    void restoreReport(const Reception &report);
    // Ages the clouds to the current time (live sources call it now and
    // then so that the strip's age and the levels move without spots).
    void refresh();
    // Forgets every cloud and alert (a new file, a new own locator).
    void clear();

    // Clouds kept, any order.
    std::vector<const WatchCloud *> clouds() const;
    // The best live cloud in range: highest level, then highest own MUF;
    // null when there is none.
    const WatchCloud *bestCloud() const;

    // The alert text of a level reached by a cloud, for example
    // "2 m open via JN14 FOT=152MHz AZ=226 EL=4 -> IN83".
    static QString alertText(const WatchCloud &cloud, WatchLevel level);
    // The strip's words for the cloud at `now`: square, level, a decode at
    // the own station, own MUF ("~" when only approximate paths give it),
    // course and elevation, far square, the bands it opens and its age, for
    // example "JN14  2 m open  FOT 152 MHz  AZ 226 EL 4  -> IN83  opens 6 m
    // 4 m 2 m  3 min ago"; `NoCloudsText` for none.
    static QString describe(const WatchCloud *cloud, const QDateTime &now);
    static inline const QString NoCloudsText = QStringLiteral("no Es clouds in range");
    // The time of a spot on the spots' clock: its hhmmZ taken on the day
    // that puts it nearest to `now` (a file crossing midnight, or dated by
    // the day it is replayed on).
    static QDateTime alignToNow(const QDateTime &spotTime, const QDateTime &now);

Q_SIGNALS:
    // The set of clouds or what they say changed.
    void cloudsChanged();
    // An enabled level was reached (not within NoRepeatSecs of the same
    // square and level).
    void levelReached(const zkr::WatchCloud &cloud, zkr::WatchLevel level, const QString &text);

private:
    struct AlertKey {
        QString square;
        WatchLevel level;
        friend bool operator==(const AlertKey &, const AlertKey &) = default;
        friend size_t qHash(const AlertKey &key, size_t seed = 0) {
            return qHashMulti(seed, key.square, static_cast<int>(key.level));
        }
    };

    void takeSpot(const EvaluatedSpot &spot, bool announce);
    void takeReport(const Reception &report, bool announce);
    // Puts the spot into its cloud and announces what it changed.
    void take(WatchSpot &&spot, const QString &square, bool announce);
    // Recomputes what the cloud says at `now`; announces levels newly held.
    void update(WatchCloud &cloud, const QDateTime &now, bool announce);
    void expire(const QDateTime &now);

    WatchSettings settings_;
    std::function<QDateTime()> clock_;
    QDateTime spotNow_; // latest spot time seen, for the spots' clock
    QHash<QString, WatchCloud> clouds_;
    QHash<AlertKey, QDateTime> lastAlert_;
    QDateTime nextExpiry_;
};

} // namespace zkr

Q_DECLARE_METATYPE(zkr::WatchLevel)
