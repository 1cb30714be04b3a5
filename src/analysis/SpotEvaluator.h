#pragma once

#include "EvaluatedSpot.h"
#include "SpotLineParsing.h"

#include <QString>
#include <QStringView>

namespace zkr {

// What the evaluation of a spot depends on besides the line itself.
struct AnalysisSettings {
    QString ownLocator; // OwnLocator: 4 or 6 characters, upper-case; "" while none is set
    ColumnTable columns = ClusterColumns; // SpotLine_Columns of the source
    bool evalAll = false;                 // Eval_Flag: unmarked spots are computed like Es spots
    bool over144Only = false;             // print only spots of MinFrequency_MHz and above
    bool esSpotsOnly = false;             // print only Es spots
    QString settingsFileName = QStringLiteral("zkr_muf.ini"); // named when the own locator is wrong
};

// Turns one line into an evaluated spot. Keeps nothing from one spot to the
// next, so the same line always gives the same value.
class SpotEvaluator {
public:
    explicit SpotEvaluator(AnalysisSettings settings = {});

    const AnalysisSettings &settings() const { return settings_; }
    void setSettings(AnalysisSettings settings);

    // A line from the cluster or a file, with or without "DX de " and its
    // line end: cut to 75 bytes, prefix removed, analysed, printed. `utf8`:
    // the line came as UTF-8, so its columns count each character's bytes.
    EvaluatedSpot evaluateClusterLine(QStringView received, bool utf8 = false) const;
    // A line of the web spot page: trimmed, entities undone, analysed, and
    // printed in the shape of a cluster line.
    EvaluatedSpot evaluateWebLine(QStringView pageLine) const;

private:
    AnalysisSettings settings_;
};

} // namespace zkr
