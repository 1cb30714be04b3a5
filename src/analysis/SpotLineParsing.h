#pragma once

#include <QString>
#include <QStringList>

#include <array>
#include <cstdint>
#include <optional>

namespace zkr {

struct ProgramState;

using ColumnTable = std::array<std::int16_t, 15>;

// Start and length of spotter, frequency, DX call, comment, time and the two
// tail fields, then the start of a further column, for the web spot page and
// for cluster (and replayed) lines. The cluster frequency column reaches two
// characters into the DX call column on purpose.
inline constexpr ColumnTable WebColumns{1, 11, 13, 10, 24, 12, 37, 34, 72, 4, 77, 2, 80, 5, 86};
inline constexpr ColumnTable ClusterColumns{1, 9, 10, 12, 19, 12, 33, 35, 65, 4, 77, 2, 80, 5, 86};

// Loads the column table of the run mode (upper-cased): the web table for
// "WEBCLUSTER", the cluster table for "TELNETCLUSTER" and "FILE", and sets
// Column_Count = 15. Any other mode leaves table and count as they are.
void Load_ColumnTable(ProgramState &state);

// Turns a received or replayed cluster line into the line the columns are
// applied to: one final CR LF cut off, then at most 75 characters, then a
// leading "DX de " removed.
QString Prepare_ClusterLine(const QString &received);

// Fills Spot_Spotter .. Spot_Tail2 and Spot_Frequency from Spot_Line and
// SpotLine_Columns.
void Extract_SpotFields(ProgramState &state);

// Removes element `index` of `list`: elements index+1 .. last move down one
// place and the removed one goes to `last`. With keepSize the element at
// `last` becomes "" and the list keeps its size; otherwise the list is cut
// to 0 .. last-1 (never below one element). `last` defaults to the upper
// bound.
void Array_RemoveAt(QStringList &list, std::int16_t index, std::optional<int> last = std::nullopt,
                    bool keepSize = true);

// Keeps SpotLines within MaxSpotLines: drops the SpotLine_Count oldest lines
// (indices 1 .. SpotLine_Count) and shrinks the list until its upper bound
// is MaxSpotLines or less. Busy is held true while it runs.
void Trim_SpotLines(ProgramState &state);

} // namespace zkr
