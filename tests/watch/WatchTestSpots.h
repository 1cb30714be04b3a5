#pragma once

#include "EvaluatedSpot.h"

#include <QDateTime>

namespace zkr::test {

inline const QDateTime T0(QDate(2024, 6, 15), QTime(12, 0), Qt::UTC);

// An evaluated Es spot of the cloud over `cloud` as the own station sees it,
// made `minutes` after T0 (its line carries no time: the time received
// counts).
struct SpotSpec {
    const char *cloud = "JN14AB";
    double ownMuf = 120;
    double elevation = 5;
    double ownKm = 900;
    float frequency = 50.1f;
    double minutes = 0;
    const char *mode = "ES";
    double muf = 90;
};

inline EvaluatedSpot esSpot(const SpotSpec &s) {
    EvaluatedSpot spot;
    spot.spotter = "DL1AA";
    spot.dxCall = "EA1BB";
    spot.frequency = s.frequency;
    spot.mode = s.mode;
    spot.received = T0.addSecs(static_cast<qint64>(s.minutes * 60));
    EsPath es;
    es.cloud = s.cloud;
    es.muf = s.muf;
    es.ownMuf = s.ownMuf;
    es.elevation = s.elevation;
    es.ownKm = s.ownKm;
    es.azimuth = 226;
    es.far = "IN83KL";
    spot.es = es;
    spot.runs = {{QString("DL1AA: %1 EA1BB").arg(s.frequency), 0}, {"\r\n", 0}};
    return spot;
}

} // namespace zkr::test
