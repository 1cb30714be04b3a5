#pragma once

#include <QString>
#include <QStringView>

#include <array>
#include <cstdint>

namespace zkr {

struct AnalysisSettings;
struct EvaluatedSpot;

using ColumnTable = std::array<std::int16_t, 15>;

// Start and length of spotter, frequency, DX call, comment, time and the two
// tail fields, then the start of a further column, for the web spot page and
// for cluster (and replayed) lines. The cluster frequency column reaches two
// characters into the DX call column on purpose.
inline constexpr ColumnTable WebColumns{1, 11, 13, 10, 24, 12, 37, 34, 72, 4, 77, 2, 80, 5, 86};
inline constexpr ColumnTable ClusterColumns{1, 9, 10, 12, 19, 12, 33, 35, 65, 4, 77, 2, 80, 5, 86};

// The column table of a run mode (compared upper-cased): the web table for
// "WEBCLUSTER", the cluster table for "TELNETCLUSTER" and "FILE", all zeros
// (every field empty) for any other.
ColumnTable Load_ColumnTable(const QString &runMode);

// Turns a received or replayed cluster line into the line the columns are
// applied to: one final CR LF cut off, then at most 75 bytes as the node
// sent them, then a leading "DX de " removed. `utf8`: the line came as
// UTF-8, so a character counts its UTF-8 bytes (and is never cut in two);
// otherwise every character is one byte.
QString Prepare_ClusterLine(QStringView received, bool utf8 = false);

// The column table, counted in bytes, as character positions in a line that
// came as UTF-8: a field takes the characters whose first byte lies in its
// byte range.
ColumnTable Utf8_ColumnTable(const ColumnTable &byteColumns, QStringView line);

// Undoes the HTML character entities of a web spot line ("&lt;", "&gt;",
// "&amp;", "&quot;", in that order, each until none is left), drops the
// degree sign, and blanks a "<>" with the six characters before it.
QString Clean_SpotLine(QString line);

// Fills spotter .. tail2 and the frequency of the spot from its line and
// the settings' columns, which count bytes when the line came as UTF-8.
// Throws RunTimeError(Overflow) for a frequency beyond a float.
void Extract_SpotFields(EvaluatedSpot &spot, const AnalysisSettings &settings, bool utf8 = false);

} // namespace zkr
