#include "ModeMarkers.h"

#include "ProgramState.h"
#include "UpperCase.h"

namespace zkr {

namespace {

QString modeText(SpotModeKind mode) {
    switch (mode) {
    case SpotModeKind::ES:
        return QStringLiteral("ES");
    case SpotModeKind::MS:
        return QStringLiteral("MS");
    case SpotModeKind::TR:
        return QStringLiteral("TR");
    case SpotModeKind::EME:
        return QStringLiteral("EME");
    case SpotModeKind::SAT:
        return QStringLiteral("SAT");
    case SpotModeKind::MUF:
        return QStringLiteral("MUF");
    }
    return QStringLiteral("??");
}

// Where the marker sits in `comment` if the test succeeds, else -1.
qsizetype markerPosition(QStringView comment, const ModeMarkerTest &test) {
    const QStringView marker(test.marker.data(), static_cast<qsizetype>(test.marker.size()));
    switch (test.kind) {
    case MarkerKind::Ends:
        return comment.endsWith(marker) ? comment.size() - marker.size() : -1;
    case MarkerKind::Begins:
        return comment.startsWith(marker) ? 0 : -1;
    case MarkerKind::Equals:
        return comment == marker ? 0 : -1;
    case MarkerKind::Contains:
        return comment.indexOf(marker);
    }
    return -1;
}

} // namespace

void Find_Mode(ProgramState &state) {
    state.Spot_Mode = QStringLiteral("??");
    if (!state.Locator_1.isEmpty() &&
        QStringView(state.Locator_1).left(4) == QStringView(state.Locator_2).left(4)) {
        state.Spot_Mode = QStringLiteral("TR");
        return;
    }
    const QString comment = upperCase(state.Comment_Upper);
    for (const ModeMarkerTest &test : ModeMarkerTests) {
        const qsizetype at = markerPosition(comment, test);
        if (at >= 0) {
            state.Spot_Mode = modeText(test.mode);
            state.Comment_Upper = comment;
            state.Comment_Upper.remove(at, static_cast<qsizetype>(test.marker.size()));
            return;
        }
    }
}

} // namespace zkr
