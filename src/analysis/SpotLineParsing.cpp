#include "SpotLineParsing.h"

#include "RunTimeError.h"
#include "SpotEvaluator.h"
#include "TextFunctions.h"

#include <QVarLengthArray>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace zkr {

namespace {

// The trimmed column as a view into the line: one string is made per field,
// not three.
QStringView fieldView(QStringView line, const ColumnTable &columns, int startEntry) {
    const int start = columns[static_cast<std::size_t>(startEntry - 1)];
    const int length = columns[static_cast<std::size_t>(startEntry)];
    if (start < 1 || length <= 0 || start > line.size()) {
        return {};
    }
    QStringView view = line.mid(start - 1, length);
    while (!view.isEmpty() && view.front() == QLatin1Char(' ')) {
        view = view.mid(1);
    }
    while (!view.isEmpty() && view.back() == QLatin1Char(' ')) {
        view.chop(1);
    }
    return view;
}

// Where each character of a line that came as UTF-8 starts, in bytes, and
// the byte length of the line as the last entry. Both halves of a surrogate
// pair start where the pair does, so no column parts them.
template <typename Offsets> void utf8Offsets(QStringView line, Offsets &offsets) {
    int bytes = 0;
    for (qsizetype i = 0; i < line.size(); ++i) {
        const char16_t u = line[i].unicode();
        offsets.push_back(bytes);
        if (QChar::isHighSurrogate(u) && i + 1 < line.size() &&
            QChar::isLowSurrogate(line[i + 1].unicode())) {
            offsets.push_back(bytes);
            ++i;
            bytes += 4;
        } else {
            bytes += u < 0x80 ? 1 : u < 0x800 ? 2 : 3;
        }
    }
    offsets.push_back(bytes);
}

using LineOffsets = QVarLengthArray<int, 96>;

} // namespace

ColumnTable Utf8_ColumnTable(const ColumnTable &byteColumns, QStringView line) {
    LineOffsets offsets;
    utf8Offsets(line, offsets);
    // The characters that start before byte position `byte` (0-based).
    const auto charactersBefore = [&](int byte) {
        return static_cast<int>(std::lower_bound(offsets.begin(), offsets.end() - 1, byte) -
                                offsets.begin());
    };
    ColumnTable columns = byteColumns;
    for (std::size_t i = 0; i + 1 < columns.size(); i += 2) {
        const int start = byteColumns[i];
        const int length = byteColumns[i + 1];
        if (start < 1 || length <= 0) {
            continue;
        }
        const int first = charactersBefore(start - 1);
        columns[i] = static_cast<std::int16_t>(first + 1);
        columns[i + 1] = static_cast<std::int16_t>(charactersBefore(start - 1 + length) - first);
    }
    return columns;
}

ColumnTable Load_ColumnTable(const QString &runMode) {
    const QString mode = runMode.toUpper();
    if (mode == QLatin1String("WEBCLUSTER")) {
        return WebColumns;
    }
    if (mode == QLatin1String("TELNETCLUSTER") || mode == QLatin1String("FILE")) {
        return ClusterColumns;
    }
    return ColumnTable{};
}

QString Prepare_ClusterLine(QStringView line, bool utf8) {
    constexpr int MaxBytes = 75;
    if (line.endsWith(QLatin1String("\r\n"))) {
        line.chop(2);
    }
    if (utf8 && line.size() > MaxBytes / 3) {
        LineOffsets offsets;
        utf8Offsets(line.first(std::min<qsizetype>(line.size(), MaxBytes + 1)), offsets);
        // Whole characters only: up to the last one that ends within the
        // bytes (offsets[k] is where character k - 1 ends).
        qsizetype keep = 0;
        for (qsizetype k = 1; k < offsets.size() && offsets[k] <= MaxBytes; ++k) {
            if (offsets[k] != offsets[k - 1]) { // not between the halves of a pair
                keep = k;
            }
        }
        line.truncate(keep);
    }
    if (line.size() > MaxBytes) {
        line.truncate(MaxBytes);
    }
    if (line.startsWith(QLatin1String("DX de "))) {
        line = line.mid(6);
    }
    return line.toString();
}

QString Clean_SpotLine(QString line) {
    const std::pair<const char *, const char *> entities[] = {
        {"&lt;", "<"}, {"&gt;", ">"}, {"&amp;", "&"}, {"&quot;", "\""}};
    for (const auto &[entity, plain] : entities) {
        const QLatin1StringView from(entity);
        const QLatin1StringView to(plain);
        for (qsizetype at = line.indexOf(from); at >= 0; at = line.indexOf(from)) {
            line.replace(at, from.size(), to);
        }
    }
    line.remove(QChar(176));
    const int p = inStr(line, u"<>");
    if (p > 0) {
        // The six characters before the "<>" and the "<>" itself become
        // blanks, so the time and tail columns stay where they were.
        const int kept = std::max(p - 7, 0);
        line = left(line, kept) + QString(p + 1 - kept, QLatin1Char(' ')) + mid(line, p + 2);
    }
    return line;
}

void Extract_SpotFields(EvaluatedSpot &spot, const AnalysisSettings &settings, bool utf8) {
    const QStringView line(spot.line);
    const ColumnTable columns = utf8 ? Utf8_ColumnTable(settings.columns, line) : settings.columns;
    spot.spotter = fieldView(line, columns, 1).toString();
    const QStringView frequency = fieldView(line, columns, 3);
    const double megahertz = leadingNumber(frequency) / 1000.0;
    if (std::fabs(megahertz) > std::numeric_limits<float>::max()) {
        throw RunTimeError(RunTimeError::Overflow);
    }
    spot.frequency = static_cast<float>(megahertz);
    // The number reader skips blanks, so the column that reaches into the DX
    // call takes a call's leading digit too ("70200.0  9A1AA"); the outputs
    // want the number as written.
    const qsizetype blank = frequency.indexOf(QLatin1Char(' '));
    spot.frequencyMhz = leadingNumber(blank < 0 ? frequency : frequency.first(blank)) / 1000.0;
    spot.dxCall = fieldView(line, columns, 5).toString();
    spot.comment = fieldView(line, columns, 7).toString();
    spot.time = fieldView(line, columns, 9).toString();
    spot.tail1 = fieldView(line, columns, 11).toString();
    spot.tail2 = fieldView(line, columns, 13).toString();
}

} // namespace zkr
