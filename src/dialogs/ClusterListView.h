#pragma once

#include <QString>

#include <cstdint>

class QTreeWidget;

namespace zkr {

struct ProgramState;

// The setup dialog's cluster list on the screen: columns "DX-Cluster",
// "Host" and "Port", one row per cluster of the list file.

// Fills `list` from the file at `path`. A missing or unreadable file leaves
// the list as it was and sets `errorText`; otherwise `errorText` is empty.
// Cluster_SelectedRow becomes the row of the cluster named Telnet_Call.
void Load_ClusterList(QTreeWidget &list, const QString &path, char separator, QString &errorText,
                      ProgramState &state);

// Colours (&H00BBGGRR) one cell of a row, bold or not. Columns and rows
// count from 1; a row that does not exist is left alone.
void Format_ListCell(QTreeWidget &list, std::uint32_t colour, int column, int row, bool bold);

} // namespace zkr
