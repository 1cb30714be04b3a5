#include "ClusterList.h"

#include "TextFunctions.h"

namespace zkr {

QList<ClusterList::Row> ClusterList::parse(const QByteArray &bytes, char separator) {
    // Lines end at CR LF or, in a list edited on Linux, at LF alone; a lone
    // CR stays inside its line.
    QList<QByteArray> lines;
    qsizetype start = 0;
    for (qsizetype end = bytes.indexOf('\n', start); end >= 0; end = bytes.indexOf('\n', start)) {
        const bool crLf = end > start && bytes.at(end - 1) == '\r';
        lines.append(bytes.mid(start, end - start - (crLf ? 1 : 0)));
        start = end + 1;
    }
    lines.append(bytes.mid(start));

    QList<Row> rows;
    // The header (line 0) and the text after the last line end are skipped.
    for (qsizetype i = 1; i + 1 < lines.size(); ++i) {
        const QByteArray &line = lines.at(i);
        Row row;
        row.line = static_cast<int>(i);
        const qsizetype first = line.indexOf(separator);
        if (first < 0) {
            row.name = QString::fromLatin1(line);
        } else {
            row.name = QString::fromLatin1(line.left(first));
            const QByteArray rest = line.mid(first + 1);
            const qsizetype second = rest.indexOf(separator);
            if (second < 0) {
                row.host = QString::fromLatin1(rest);
            } else {
                row.host = QString::fromLatin1(rest.left(second));
                row.port = QString::fromLatin1(rest.mid(second + 1));
            }
        }
        rows.append(row);
    }
    return rows;
}

int ClusterList::selectedRow(const QList<Row> &rows, const QString &telnetCall) {
    int selected = 0;
    for (const Row &row : rows) {
        if (row.name == telnetCall) {
            selected = row.line;
        }
    }
    return selected;
}

QString ClusterList::notFoundText(const QString &path) {
    return QStringLiteral("Datei '") + path + QStringLiteral(" not found !");
}

std::array<int, 3> ClusterList::columnWidths(int listWidthTwips) {
    const int base = static_cast<int>(roundHalfEven(listWidthTwips / 3.1));
    return {base - 350, base + 700, base - 350};
}

} // namespace zkr
