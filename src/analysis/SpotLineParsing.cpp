#include "SpotLineParsing.h"

#include "RunTimeError.h"
#include "SpotEvaluator.h"
#include "TextFunctions.h"

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

} // namespace

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

QString Prepare_ClusterLine(QStringView line) {
    if (line.endsWith(QLatin1String("\r\n"))) {
        line.chop(2);
    }
    if (line.size() > 75) {
        line.truncate(75);
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

void Extract_SpotFields(EvaluatedSpot &spot, const AnalysisSettings &settings) {
    const ColumnTable &columns = settings.columns;
    const QStringView line(spot.line);
    spot.spotter = fieldView(line, columns, 1).toString();
    const double megahertz = leadingNumber(fieldView(line, columns, 3)) / 1000.0;
    if (std::fabs(megahertz) > std::numeric_limits<float>::max()) {
        throw RunTimeError(RunTimeError::Overflow);
    }
    spot.frequency = static_cast<float>(megahertz);
    spot.dxCall = fieldView(line, columns, 5).toString();
    spot.comment = fieldView(line, columns, 7).toString();
    spot.time = fieldView(line, columns, 9).toString();
    spot.tail1 = fieldView(line, columns, 11).toString();
    spot.tail2 = fieldView(line, columns, 13).toString();
}

} // namespace zkr
