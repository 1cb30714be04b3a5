#pragma once

#include "EvaluatedSpot.h"
#include "MemoryPane.h"

#include <QString>
#include <QStringList>

#include <array>
#include <span>

class QIODevice;

namespace zkr {

struct Reception;

// The names of the four panes, as the main window's tabs show them.
inline constexpr std::array<const char *, 4> PaneNames{"All", "VHF", "2m", "Es"};

// A pane to print and its name ("Es", "Reports").
struct NamedPane {
    const char *name;
    const MemoryPane *pane;
};

// The four spot panes with their names.
std::array<NamedPane, 4> spotPanes(const std::array<MemoryPane, 4> &panes);

// Writes each pane as a heading "== Name ==" followed by its committed lines,
// top (newest) first, one per line, UTF-8.
void Write_PanesText(QIODevice &out, std::span<const NamedPane> panes);
void Write_PanesText(QIODevice &out, const std::array<MemoryPane, 4> &panes);

// Writes {"panes":[{"name":..,"lines":[[["text","#RRGGBB"],..],..]},..],
// "messages":[..]}: every line a list of its coloured segments (the panes'
// &H00BBGGRR colours as "#RRGGBB"), equally coloured neighbours merged and
// empty ones left out. UTF-8.
void Write_PanesJson(QIODevice &out, std::span<const NamedPane> panes, const QStringList &messages);
void Write_PanesJson(QIODevice &out, const std::array<MemoryPane, 4> &panes,
                     const QStringList &messages);

// Appends one evaluated spot as a JSON object on one line (no line end):
// source ("cluster", "file", "web"), time, spotter, frequency_mhz, dx, comment, mode, locators, es
// (null or cloud, muf_mhz, critical_mhz, own_muf_mhz, azimuth, elevation, far, path_km, own_km),
// for a spot located through the call book or the country file "approximate": true and
// approximate_path (the fields of es, uncertainty_km, and spotter and dx as {locator, located:
// "comment", "callbook" or "country"}), panes, runs ([text, "#RRGGBB"] pairs without the line end)
// and, when the evaluation stopped early, error. UTF-8.
void Write_SpotJson(QByteArray &out, const EvaluatedSpot &spot);

// Appends one reception report as a JSON object on one line (no line end):
// source ("wsjtx", "alltxt", "pskreporter"), time (ISO 8601 UTC with "Z"),
// frequency_mhz (to the hertz), mode, snr (null when unknown), tx and rx as
// {call, locator} (null for one unknown), es (null, or the fields of a
// spot's es). UTF-8.
void Write_ReportJson(QByteArray &out, const Reception &report);

} // namespace zkr
