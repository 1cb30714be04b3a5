#pragma once

#include "EsPathModel.h"
#include "EvaluatedSpot.h"

#include <QString>

namespace zkr {

// One spot while it is evaluated: the value being built and what the
// analysis works out on the way that is no part of it.
struct SpotWork {
    EvaluatedSpot spot;
    // The line came as UTF-8: the columns count its characters' bytes.
    bool utf8Line = false;
    // The comment upper-cased; the locators and the mode marker found are
    // cut out of it.
    QString commentUpper;
    // Compute_EsPath's results; the spot takes them as its `es` only when
    // it is a spot to compute.
    bool pathComputed = false;
    EsPath path;
    PathPoints points;
};

} // namespace zkr
