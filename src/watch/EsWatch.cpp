#include "EsWatch.h"

#include "EsPathModel.h"
#include "ResultOutput.h"

#include <QtMath>

#include <algorithm>
#include <array>

namespace zkr {

namespace {

struct Band {
    WatchLevel open;
    WatchLevel confirmed;
    int threshold; // MHz: the own MUF that opens the band
    double low;    // the band's spots, MHz
    double high;
};

constexpr std::array<Band, 3> Bands{{
    {WatchLevel::Open50, WatchLevel::Confirmed50, 50, 50.0, 54.0},
    {WatchLevel::Open70, WatchLevel::Confirmed70, 70, 70.0, 71.0},
    {WatchLevel::Open144, WatchLevel::Confirmed144, 144, 144.0, 148.0},
}};

constexpr unsigned bit(WatchLevel level) {
    return 1u << static_cast<int>(level);
}

// Rounded as the results are printed, so that a level means what the
// coloured line says.
long long whole(double x) {
    return static_cast<long long>(std::floor(x + 0.5));
}

// The levels one spot shows for the own station.
unsigned levelsOf(const WatchSpot &spot) {
    const long long ownMuf = whole(spot.es.ownMuf);
    const bool aboveHorizon = whole(spot.es.elevation) >= 0;
    unsigned held = 0;
    if (ownMuf >= EsWatch::RisingMHz) {
        held |= bit(WatchLevel::Rising);
    }
    for (const Band &band : Bands) {
        if (ownMuf >= band.threshold && aboveHorizon) {
            held |= bit(band.open);
        }
        if (spot.esMode && spot.frequency >= band.low && spot.frequency <= band.high &&
            spot.es.ownKm < Distance_Limit) {
            held |= bit(band.confirmed);
        }
    }
    return held;
}

} // namespace

double WatchCloud::keptMuf() const {
    double highest = 0;
    for (const WatchSpot &spot : spots) {
        highest = std::max(highest, spot.es.muf);
    }
    return highest;
}

EsWatch::EsWatch(QObject *parent) : QObject(parent) {}

void EsWatch::setSettings(const WatchSettings &settings) {
    settings_ = settings;
    const QDateTime current = now();
    for (WatchCloud &cloud : clouds_) {
        // A level switched on now is no news: only what is reached later.
        update(cloud, current, false);
    }
    Q_EMIT cloudsChanged();
}

void EsWatch::setWallClock(std::function<QDateTime()> clock) {
    clock_ = std::move(clock);
}

void EsWatch::setSpotTimeClock() {
    clock_ = nullptr;
}

QDateTime EsWatch::now() const {
    return clock_ ? clock_() : spotNow_;
}

QDateTime EsWatch::alignToNow(const QDateTime &spotTime, const QDateTime &now) {
    if (!now.isValid() || !spotTime.isValid()) {
        return spotTime;
    }
    QDateTime aligned = spotTime;
    const qint64 halfDay = 12 * 3600;
    while (aligned.secsTo(now) > halfDay) {
        aligned = aligned.addDays(1);
    }
    while (now.secsTo(aligned) > halfDay) {
        aligned = aligned.addDays(-1);
    }
    return aligned;
}

void EsWatch::addSpot(const EvaluatedSpot &spot) {
    if (!spot.es || !spot.error.isEmpty() || spot.es->cloud.size() < 4 ||
        Is_DoubtfulEs(spot, whole(spot.es->muf))) {
        return;
    }
    QDateTime made = spot.spotTimeUtc();
    if (!clock_) {
        made = alignToNow(made, spotNow_);
        if (!spotNow_.isValid() || made > spotNow_) {
            spotNow_ = made;
        }
    }
    const QDateTime current = now();
    if (!made.isValid() || made.secsTo(current) >= CloudKeptSecs) {
        return; // too old to matter
    }

    WatchSpot kept;
    kept.time = made;
    for (const TextRun &run : spot.runs) {
        if (run.text != QLatin1String("\r\n")) {
            kept.printed += run.text;
        }
    }
    kept.spotter = spot.spotter;
    kept.dxCall = spot.dxCall;
    kept.frequency = spot.frequency;
    kept.esMode = spot.mode == QLatin1String("ES");
    kept.es = *spot.es;

    const QString square = spot.es->cloud.left(4);
    WatchCloud &cloud = clouds_[square];
    cloud.square = square;
    // Spots arrive nearly in time order; a late one is put in its place.
    auto at = std::find_if(cloud.spots.begin(), cloud.spots.end(),
                           [&made](const WatchSpot &other) { return other.time <= made; });
    cloud.spots.insert(at, std::move(kept));
    if (cloud.spots.size() > MaxSpotsPerCloud) {
        cloud.spots.pop_back();
    }
    cloud.lastSpot = cloud.spots.front().time;
    update(cloud, current, true);
    expire(current);
    Q_EMIT cloudsChanged();
}

void EsWatch::refresh() {
    const QDateTime current = now();
    nextExpiry_ = QDateTime();
    expire(current);
    Q_EMIT cloudsChanged();
}

void EsWatch::clear() {
    clouds_.clear();
    lastAlert_.clear();
    spotNow_ = QDateTime();
    nextExpiry_ = QDateTime();
    Q_EMIT cloudsChanged();
}

void EsWatch::expire(const QDateTime &now) {
    // Once a minute of the clock at most: the cost of a pass is spread over
    // the spots of that minute.
    if (nextExpiry_.isValid() && now < nextExpiry_) {
        return;
    }
    nextExpiry_ = now.addSecs(60);
    for (auto it = clouds_.begin(); it != clouds_.end();) {
        if (it->lastSpot.secsTo(now) >= CloudKeptSecs) {
            it = clouds_.erase(it);
        } else {
            // Clouds without new spots age here: their levels only fall.
            update(*it, now, true);
            ++it;
        }
    }
    for (auto it = lastAlert_.begin(); it != lastAlert_.end();) {
        if (it.value().secsTo(now) >= NoRepeatSecs) {
            it = lastAlert_.erase(it);
        } else {
            ++it;
        }
    }
}

void EsWatch::update(WatchCloud &cloud, const QDateTime &now, bool announce) {
    // Spots older than the map keeps them go; the cloud itself goes at the
    // next expiry pass.
    while (!cloud.spots.empty() && cloud.spots.back().time.secsTo(now) >= CloudKeptSecs) {
        cloud.spots.pop_back();
    }
    const unsigned before = cloud.levels;
    cloud.muf = 0;
    cloud.ownMuf = 0;
    cloud.levels = 0;
    const WatchSpot *best = nullptr;
    cloud.live = !cloud.spots.empty() && cloud.lastSpot.secsTo(now) < CloudLiveSecs;
    for (const WatchSpot &spot : cloud.spots) {
        if (!cloud.live || spot.time.secsTo(cloud.lastSpot) >= ReadingSecs) {
            break; // newest first: the rest are older still
        }
        cloud.muf = std::max(cloud.muf, spot.es.muf);
        if (best == nullptr || spot.es.ownMuf > best->es.ownMuf) {
            best = &spot;
        }
        cloud.ownMuf = std::max(cloud.ownMuf, spot.es.ownMuf);
        cloud.levels |= levelsOf(spot);
    }
    if (best == nullptr && !cloud.spots.empty()) {
        best = &cloud.spots.front();
    }
    if (best != nullptr) {
        cloud.best = best->es;
    }
    cloud.level = WatchLevel::None;
    for (int i = WatchLevelCount - 1; i > 0; --i) {
        const auto level = static_cast<WatchLevel>(i);
        if ((cloud.levels & bit(level)) != 0 && settings_.enabled(level)) {
            cloud.level = level;
            break;
        }
    }
    if (!announce) {
        return;
    }
    const unsigned reached = cloud.levels & ~before;
    for (int i = 1; i < WatchLevelCount; ++i) {
        const auto level = static_cast<WatchLevel>(i);
        if ((reached & bit(level)) == 0 || !settings_.enabled(level)) {
            continue;
        }
        const AlertKey key{cloud.square, level};
        const auto last = lastAlert_.constFind(key);
        if (last != lastAlert_.constEnd() && last.value().secsTo(now) < NoRepeatSecs) {
            continue;
        }
        lastAlert_.insert(key, now);
        Q_EMIT levelReached(cloud, level, alertText(cloud, level));
    }
}

std::vector<const WatchCloud *> EsWatch::clouds() const {
    std::vector<const WatchCloud *> all;
    all.reserve(static_cast<std::size_t>(clouds_.size()));
    for (const WatchCloud &cloud : clouds_) {
        all.push_back(&cloud);
    }
    return all;
}

const WatchCloud *EsWatch::bestCloud() const {
    const WatchCloud *best = nullptr;
    const QDateTime current = now();
    for (const WatchCloud &cloud : clouds_) {
        // Between two aging passes a cloud may have passed its time.
        if (!cloud.live || !cloud.inRange() || cloud.lastSpot.secsTo(current) >= CloudLiveSecs) {
            continue;
        }
        if (best == nullptr || cloud.level > best->level ||
            (cloud.level == best->level && cloud.ownMuf > best->ownMuf)) {
            best = &cloud;
        }
    }
    return best;
}

QString EsWatch::alertText(const WatchCloud &cloud, WatchLevel level) {
    QString text = watchLevelName(level) + QStringLiteral(" via ") + cloud.square;
    if (whole(cloud.ownMuf) > 0) {
        text += QStringLiteral(" FOT=%1MHz AZ=%2 EL=%3 -> %4")
                    .arg(whole(cloud.ownMuf))
                    .arg(whole(cloud.best.azimuth))
                    .arg(whole(cloud.best.elevation))
                    .arg(cloud.best.far.left(4));
    }
    return text;
}

QString EsWatch::describe(const WatchCloud *cloud, const QDateTime &now) {
    if (cloud == nullptr) {
        return NoCloudsText;
    }
    QString text = cloud->square;
    if (cloud->level != WatchLevel::None) {
        text += QStringLiteral("  ") + watchLevelName(cloud->level);
    }
    const long long ownMuf = whole(cloud->ownMuf);
    text += QStringLiteral("  FOT %1 MHz  AZ %2 EL %3")
                .arg(ownMuf)
                .arg(whole(cloud->best.azimuth))
                .arg(whole(cloud->best.elevation));
    if (!cloud->best.far.isEmpty()) {
        text += QStringLiteral("  -> ") + cloud->best.far.left(4);
    }
    QStringList opens;
    const bool aboveHorizon = whole(cloud->best.elevation) >= 0;
    for (const auto &[name, mhz] : {std::pair{"6 m", 50}, {"4 m", 70}, {"2 m", 144}}) {
        if (aboveHorizon && ownMuf >= mhz) {
            opens.append(QLatin1String(name));
        }
    }
    if (!opens.isEmpty()) {
        text += QStringLiteral("  opens ") + opens.join(QLatin1Char(' '));
    }
    const qint64 age = std::max<qint64>(0, cloud->lastSpot.secsTo(now));
    text += age < 60 ? QStringLiteral("  just now") : QStringLiteral("  %1 min ago").arg(age / 60);
    return text;
}

} // namespace zkr
