#include "EsWatch.h"

#include "EsPathModel.h"
#include "ResultOutput.h"

#include <QtMath>

#include <algorithm>
#include <array>

namespace zkr {

const std::array<EsWatch::Band, 3> EsWatch::Bands{{
    {WatchLevel::Open50, WatchLevel::Confirmed50, 50, 50.0, 54.0},
    {WatchLevel::Open70, WatchLevel::Confirmed70, 70, 70.0, 71.0},
    {WatchLevel::Open144, WatchLevel::Confirmed144, 144, 144.0, 148.0},
}};

namespace {

constexpr unsigned bit(WatchLevel level) {
    return 1u << static_cast<int>(level);
}

// Rounded as the results are printed, so that a level means what the
// coloured line says.
long long whole(double x) {
    return static_cast<long long>(std::floor(x + 0.5));
}

// What the spots of a cloud's reading show for the own station.
struct Evidence {
    double ownMuf = 0;      // any path, approximate ones included
    double exactOwnMuf = 0; // exact paths with the cloud above the own horizon
    unsigned onBand = 0;    // bit b: an exact Es spot or Es-hop report on band b
    unsigned heardHere = 0; // bit b: a decode at the own station on band b

    void add(const WatchSpot &spot) {
        ownMuf = std::max(ownMuf, spot.es.ownMuf);
        if (spot.approximate) {
            return;
        }
        if (whole(spot.es.elevation) >= 0) {
            exactOwnMuf = std::max(exactOwnMuf, spot.es.ownMuf);
        }
        const int band = EsWatch::bandOf(spot.frequency);
        if (band >= 0 && spot.esMode) {
            onBand |= 1u << band;
            if (spot.atOwnStation) {
                heardHere |= 1u << band;
            }
        }
    }

    unsigned levels() const {
        unsigned held = whole(ownMuf) >= EsWatch::RisingMHz ? bit(WatchLevel::Rising) : 0;
        for (std::size_t b = 0; b < EsWatch::Bands.size(); ++b) {
            const EsWatch::Band &band = EsWatch::Bands[b];
            const bool open = whole(exactOwnMuf) >= band.threshold;
            if (open) {
                held |= bit(band.open);
            }
            if ((open && (onBand >> b & 1u) != 0) || (heardHere >> b & 1u) != 0) {
                held |= bit(band.confirmed);
            }
        }
        return held;
    }
};

QString megahertz(double mhz) {
    return QString::number(mhz, 'f', 3);
}

// "1712Z DL1ABC heard EA7ABC IM76 on 50.313 FT8 -12 dB (wsjtx)"
QString summaryOf(const Reception &report) {
    QString text = report.time.toString(QStringLiteral("HHmm")) + QStringLiteral("Z ") +
                   report.rx.call + QStringLiteral(" heard ") + report.tx.call;
    if (!report.tx.locator.isEmpty()) {
        text += QLatin1Char(' ') + report.tx.locator;
    }
    text += QStringLiteral(" on ") + megahertz(report.frequencyMhz);
    if (!report.mode.isEmpty()) {
        text += QLatin1Char(' ') + report.mode;
    }
    if (report.snr) {
        text += QStringLiteral(" %1 dB").arg(*report.snr);
    }
    return text + QStringLiteral(" (") + reportSourceName(report.source) + QLatin1Char(')');
}

} // namespace

bool WatchSpot::isReport() const {
    return reportSourceFromName(source).has_value();
}

int WatchSpot::weight() const {
    if (atOwnStation) {
        return 2;
    }
    return approximate || isReport() ? 0 : 1;
}

int EsWatch::bandOf(double mhz) {
    for (std::size_t b = 0; b < Bands.size(); ++b) {
        if (mhz >= Bands[b].low && mhz <= Bands[b].high) {
            return static_cast<int>(b);
        }
    }
    return -1;
}

int EsWatch::bandOf(WatchLevel level) {
    for (std::size_t b = 0; b < Bands.size(); ++b) {
        if (level == Bands[b].open || level == Bands[b].confirmed) {
            return static_cast<int>(b);
        }
    }
    return level == WatchLevel::Rising ? 2 : -1;
}

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
    takeSpot(spot, true);
}

void EsWatch::restoreSpot(const EvaluatedSpot &spot) {
    takeSpot(spot, false);
}

void EsWatch::takeSpot(const EvaluatedSpot &spot, bool announce) {
    const EsPath *path = spot.es ? &*spot.es : nullptr;
    if (path == nullptr && spot.approximate) {
        path = &spot.approximate->es;
    }
    if (path == nullptr || !spot.error.isEmpty() || path->cloud.size() < 4 ||
        Is_DoubtfulEs(spot, whole(path->muf))) {
        return;
    }
    WatchSpot kept;
    kept.time = spot.spotTimeUtc();
    if (!clock_) {
        kept.time = alignToNow(kept.time, spotNow_);
    }
    kept.source = spotSourceName(spot.source);
    for (const TextRun &run : spot.runs) {
        if (run.text != QLatin1String("\r\n")) {
            kept.printed += run.text;
        }
    }
    kept.receiver = spot.spotter;
    kept.heard = spot.dxCall;
    // A comment does not say which of its locators is whose; the call book
    // does.
    if (!spot.es) {
        kept.heardLocator = spot.approximate->dxLocator;
        kept.approximate = true;
    }
    kept.frequency = spot.frequency;
    kept.esMode = spot.mode == QLatin1String("ES");
    kept.es = *path;
    take(std::move(kept), path->cloud.left(4), announce);
}

void EsWatch::addReport(const Reception &report) {
    takeReport(report, true);
}

void EsWatch::restoreReport(const Reception &report) {
    takeReport(report, false);
}

void EsWatch::takeReport(const Reception &report, bool announce) {
    if (!report.isEsHop() || report.es->cloud.size() < 4 || bandOf(report.frequencyMhz) < 0) {
        return;
    }
    WatchSpot kept;
    kept.time = report.time;
    kept.source = reportSourceName(report.source);
    kept.receiver = report.rx.call;
    kept.heard = report.tx.call;
    kept.heardLocator = report.tx.locator;
    kept.frequency = report.frequencyMhz;
    kept.snr = report.snr;
    kept.atOwnStation = report.atOwnStation;
    kept.esMode = true;
    kept.printed = summaryOf(report);
    kept.es = *report.es;
    take(std::move(kept), report.es->cloud.left(4), announce);
}

void EsWatch::take(WatchSpot &&spot, const QString &square, bool announce) {
    const QDateTime made = spot.time;
    if (!clock_ && (!spotNow_.isValid() || made > spotNow_)) {
        spotNow_ = made;
    }
    const QDateTime current = now();
    if (!made.isValid() || made.secsTo(current) >= CloudKeptSecs) {
        return; // too old to matter
    }
    WatchCloud &cloud = clouds_[square];
    cloud.square = square;
    // Spots arrive nearly in time order; a late one is put in its place.
    auto at = std::find_if(cloud.spots.begin(), cloud.spots.end(),
                           [&made](const WatchSpot &other) { return other.time <= made; });
    cloud.spots.insert(at, std::move(spot));
    if (cloud.spots.size() > MaxSpotsPerCloud) {
        // A flood of reports from others must not push out the spots and the
        // own decodes: the oldest of the lightest kind goes.
        auto lightest = cloud.spots.end() - 1;
        for (auto it = cloud.spots.end() - 1; it != cloud.spots.begin(); --it) {
            if ((it - 1)->weight() < lightest->weight()) {
                lightest = it - 1;
            }
        }
        cloud.spots.erase(lightest);
    }
    cloud.lastSpot = cloud.spots.front().time;
    update(cloud, current, announce);
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
    cloud.heardHere.clear();
    cloud.approximate = std::all_of(cloud.spots.begin(), cloud.spots.end(),
                                    [](const WatchSpot &spot) { return spot.approximate; });
    Evidence evidence;
    // The best exact path, else the best approximate one.
    const WatchSpot *best = nullptr;
    const auto better = [](const WatchSpot &spot, const WatchSpot *than) {
        return than == nullptr || (than->approximate && !spot.approximate) ||
               (than->approximate == spot.approximate && spot.es.ownMuf > than->es.ownMuf);
    };
    cloud.live = !cloud.spots.empty() && cloud.lastSpot.secsTo(now) < CloudLiveSecs;
    for (const WatchSpot &spot : cloud.spots) {
        if (!cloud.live || spot.time.secsTo(cloud.lastSpot) >= ReadingSecs) {
            break; // newest first: the rest are older still
        }
        cloud.muf = std::max(cloud.muf, spot.es.muf);
        if (better(spot, best)) {
            best = &spot;
        }
        evidence.add(spot);
        if (spot.atOwnStation && cloud.heardHere.isEmpty()) {
            const QString locator = spot.heardLocator.left(4);
            cloud.heardHere = QStringLiteral("heard ") + spot.heard +
                              (locator.isEmpty() ? QString() : QLatin1Char(' ') + locator) +
                              QStringLiteral(" on ") + megahertz(spot.frequency) +
                              QStringLiteral(" via ") + cloud.square;
        }
    }
    cloud.levels = evidence.levels();
    if (best != nullptr) {
        cloud.ownMuf = best->es.ownMuf;
    } else if (!cloud.spots.empty()) {
        best = &cloud.spots.front();
    }
    if (best != nullptr) {
        cloud.best = best->es;
        cloud.bestApproximate = best->approximate;
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
        if (!cloud.live || (!cloud.inRange() && cloud.level == WatchLevel::None) ||
            cloud.lastSpot.secsTo(current) >= CloudLiveSecs) {
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
    if (!cloud->heardHere.isEmpty()) {
        text += QStringLiteral("  ") + cloud->heardHere;
    }
    text += QStringLiteral("  FOT %1%2 MHz  AZ %3 EL %4")
                .arg(cloud->bestApproximate ? QStringLiteral("~") : QString())
                .arg(whole(cloud->ownMuf))
                .arg(whole(cloud->best.azimuth))
                .arg(whole(cloud->best.elevation));
    if (!cloud->best.far.isEmpty()) {
        text += QStringLiteral("  -> ") + cloud->best.far.left(4);
    }
    QStringList opens;
    for (const auto &[name, band] :
         {std::pair{"6 m", Bands[0]}, {"4 m", Bands[1]}, {"2 m", Bands[2]}}) {
        if ((cloud->levels & bit(band.open)) != 0) {
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
