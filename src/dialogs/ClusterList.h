#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <array>

namespace zkr {

// The cluster list file "TelnetDXCluster.txt": a header line, then one
// cluster per line as name|host|port, lines ending in CR LF. The text after
// the last CR LF (normally nothing) is never a cluster, so a file without
// a final CR LF loses its last line, as it always did.
class ClusterList {
public:
    struct Row {
        // The line's index counted from the header as 0: the first cluster
        // is 1, which is also its row number in the list.
        int line = 0;
        QString name;
        QString host;
        QString port;
        bool operator==(const Row &) const = default;
    };

    // Cuts the file's raw bytes (single-byte text) into rows. Fields are not
    // trimmed; a line without a second separator keeps the rest as its
    // host, one without any keeps the whole line as its name.
    static QList<Row> parse(const QByteArray &bytes, char separator = '|');

    // The row number of the last row named `telnetCall`, 0 when none is.
    static int selectedRow(const QList<Row> &rows, const QString &telnetCall);

    // The message of a missing file (it has no closing apostrophe).
    static QString notFoundText(const QString &path);

    // Column widths in twips for a list of the given width: the name and
    // port columns are narrower than the host column.
    static std::array<int, 3> columnWidths(int listWidthTwips);
};

} // namespace zkr
