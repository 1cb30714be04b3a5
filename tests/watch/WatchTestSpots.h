#pragma once

#include "EsWatch.h"

#include <QDateTime>

namespace zkr::test {

inline const QDateTime T0(QDate(2024, 6, 15), QTime(12, 0), Qt::UTC);

// An evaluated Es spot of the cloud over `cloud` as the own station sees it,
// made `minutes` after T0 (its line carries no time: the time received
// counts).
struct Sighting {
    const char *cloud = "JN14AB";
    double ownMuf = 120;
    double elevation = 5;
    double ownKm = 900;
    float frequency = 50.1f;
    double minutes = 0;
    const char *mode = "ES";
    double muf = 90;
    // "spot", "approximate" (a spot with an approximate path only), or a report
    // over `pathKm`: "own" (decoded at the own station), "psk" (of others).
    const char *kind = "spot";
    double pathKm = 1500;
};

inline EvaluatedSpot esSpot(const Sighting &s) {
    EvaluatedSpot spot;
    spot.spotter = "DL1AA";
    spot.dxCall = "EA1BB";
    spot.frequency = s.frequency;
    spot.mode = s.mode;
    spot.received = T0.addSecs(static_cast<qint64>(s.minutes * 60));
    spot.es = EsPath{.cloud = s.cloud,
                     .muf = s.muf,
                     .ownMuf = s.ownMuf,
                     .azimuth = 226,
                     .elevation = s.elevation,
                     .far = "IN83KL",
                     .ownKm = s.ownKm};
    spot.runs = {{QString("DL1AA: %1 EA1BB").arg(s.frequency), 0}, {"\r\n", 0}};
    if (QString(s.kind) == "approximate") {
        spot.approximate =
            ApproximatePath{*spot.es, "JO62QM", "IM76", Located::Comment, Located::Country, 300};
        spot.es.reset();
    }
    return spot;
}

inline Reception report(const Sighting &s) {
    Reception report;
    report.source = QString(s.kind) == "own" ? ReportSource::Wsjtx : ReportSource::PskReporter;
    report.atOwnStation = QString(s.kind) == "own";
    report.time = T0.addSecs(static_cast<qint64>(s.minutes * 60));
    report.frequencyMhz = s.frequency;
    report.mode = "FT8";
    report.snr = -12;
    report.tx = {"EA7ABC", "IM76"};
    report.rx = {"DL1AA", "JO62"};
    report.es = esSpot(s).es;
    report.es->pathKm = s.pathKm;
    return report;
}

// Gives the watch the spot or report of `s`.
inline void feed(EsWatch &watch, const Sighting &s) {
    if (QString(s.kind) == "own" || QString(s.kind) == "psk") {
        watch.addReport(report(s));
    } else {
        watch.addSpot(esSpot(s));
    }
}

} // namespace zkr::test
