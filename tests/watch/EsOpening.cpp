#include "EsOpening.h"

#include "EsPathModel.h"
#include "Locators.h"
#include "SpotEvaluator.h"

#include <cmath>
#include <optional>

namespace zkr::test {

namespace {

struct Track {
    const char *name;
    GeoPoint from; // at the start of its window
    GeoPoint to;   // at the end
    int startMinute;
    int endMinute;
    double peakMuf; // MHz, in the middle of the window
    // Under the own horizon the own MUF is 0: such a cloud is steered by
    // the MUF of its spot paths.
    bool underHorizon;
};

// From JO62QM: A over the Alps and B over the Po valley are above the own
// horizon (it lies about 1,180 km away for the Es layer); C over the Gulf of
// Lion is under it, but within the distance limit of 1,500 km.
const Track Tracks[] = {
    {"A", {46.3, 7.1}, {46.3, 11.9}, 0, 90, 170, false},
    {"B", {44.4, 8.1}, {44.4, 13.9}, 30, 120, 170, false},
    {"C", {42.6, 1.1}, {42.6, 4.9}, 15, 105, 170, true},
};

QString clusterLine(const QString &spotter, double khz, const QString &dx, const QString &comment,
                    const QTime &time) {
    QString line = ("DX de " + spotter + ":").leftJustified(15);
    line += QString::number(khz, 'f', 1).rightJustified(9);
    line += "  " + dx.leftJustified(13) + comment.leftJustified(31) + time.toString("HHmm") + "Z";
    return line;
}

GeoPoint along(const Track &track, double fraction) {
    return {track.from.latitude + (track.to.latitude - track.from.latitude) * fraction,
            track.from.longitude + (track.to.longitude - track.from.longitude) * fraction};
}

// The own MUF a cloud has at `minute` of its window: up from 60 MHz to its
// peak in the middle and down again.
double targetMuf(const Track &track, double minute) {
    const double half = (track.endMinute - track.startMinute) / 2.0;
    const double middle = track.startMinute + half;
    return 60 + (track.peakMuf - 60) * (1 - std::abs(minute - middle) / half);
}

double steered(const Track &track, const EsPath &path) {
    return track.underHorizon ? path.muf : path.ownMuf;
}

struct Chosen {
    QString line;
    EvaluatedSpot spot;
};

// The spot through `centre` on `khz` whose evaluated own MUF (or path MUF)
// is nearest to `target`, with its midpoint in the centre's square; none
// when no path comes within 4 MHz.
std::optional<Chosen> spotThrough(const SpotEvaluator &evaluator, const Track &track,
                                  GeoPoint centre, double khz, double target,
                                  const QString &spotter, const QString &dx, const QTime &time,
                                  double course) {
    const QString square = LatLon_To_Locator(centre.latitude, centre.longitude).left(4);
    std::optional<Chosen> best;
    double bestError = 4;
    for (double half = 20; half <= 1100; half += 5) {
        const GeoPoint a =
            Destination_Point(centre.latitude, centre.longitude, course, half, EarthRadius);
        const GeoPoint b =
            Destination_Point(centre.latitude, centre.longitude, course + 180, half, EarthRadius);
        const QString comment = LatLon_To_Locator(a.latitude, a.longitude) + " ES " +
                                LatLon_To_Locator(b.latitude, b.longitude);
        const QString line = clusterLine(spotter, khz, dx, comment, time);
        const EvaluatedSpot spot = evaluator.evaluateClusterLine(line);
        if (!spot.es || spot.es->cloud.left(4) != square) {
            continue;
        }
        const double error = std::abs(steered(track, *spot.es) - target);
        if (error < bestError) {
            bestError = error;
            best = Chosen{line, spot};
        }
    }
    return best;
}

} // namespace

EsOpening EsOpening::generate(int minutes) {
    AnalysisSettings settings;
    settings.ownLocator = OwnLocator;
    const SpotEvaluator evaluator(settings);
    const QTime start(17, 0);

    EsOpening opening;
    for (const Track &track : Tracks) {
        Cloud cloud;
        cloud.name = track.name;
        cloud.underHorizon = track.underHorizon;
        const GeoPoint middle = along(track, 0.5);
        GeoPoint own{};
        QString ownLocator = OwnLocator;
        Locator_To_LatLon(ownLocator, own.latitude, own.longitude);
        cloud.km = EarthRadius * Great_Circle_Angle(own.latitude, middle.latitude, own.longitude,
                                                    middle.longitude);
        opening.clouds.push_back(cloud);
    }
    for (int minute = 0; minute <= minutes && minute <= 120; ++minute) {
        for (std::size_t c = 0; c < std::size(Tracks); ++c) {
            const Track &track = Tracks[c];
            // Each cloud is heard every two minutes, the clouds in turn.
            if (minute < track.startMinute || minute > track.endMinute ||
                (minute + static_cast<int>(c)) % 2 != 0) {
                continue;
            }
            const double fraction =
                double(minute - track.startMinute) / (track.endMinute - track.startMinute);
            const GeoPoint centre = along(track, fraction);
            const double target = targetMuf(track, minute);
            const QTime time = start.addSecs(minute * 60);
            Cloud &cloud = opening.clouds[c];
            auto heard = [&](const std::optional<Chosen> &chosen) {
                if (!chosen) {
                    return;
                }
                opening.lines.append(chosen->line);
                const QString square = chosen->spot.es->cloud.left(4);
                if (cloud.squares.isEmpty() || cloud.squares.last() != square) {
                    cloud.squares.append(square);
                }
                if (steered(track, *chosen->spot.es) > cloud.peakMuf) {
                    cloud.peakMuf = steered(track, *chosen->spot.es);
                    cloud.peakSquare = square;
                }
            };
            const QString n = QString::number(minute % 10);
            heard(spotThrough(evaluator, track, centre, 50150 + 10 * (minute % 7), target,
                              "DL" + n + "AB", "EA" + n + "XY", time, 20.0 + 10 * (minute % 5)));
            if (target >= 150) {
                heard(spotThrough(evaluator, track, centre, 144300, target, "OK" + n + "CD",
                                  "I" + n + "ZZ", time, 60.0));
            }
        }
    }
    return opening;
}

QByteArray EsOpening::bytes() const {
    return (lines.join("\r\n") + "\r\n").toLatin1();
}

} // namespace zkr::test
