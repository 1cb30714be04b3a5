#include "SpotLineParsing.h"

#include "Int16Arithmetic.h"
#include "ProgramState.h"
#include "RunTimeError.h"
#include "TextFunctions.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zkr {

namespace {

// The trimmed column as a view into the line: one string is made per field,
// not three.
QStringView fieldView(const ProgramState &state, int startEntry) {
    const int start = state.column(startEntry);
    const int length = state.column(startEntry + 1);
    QStringView line(state.Spot_Line);
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

QString field(const ProgramState &state, int startEntry) {
    return fieldView(state, startEntry).toString();
}

} // namespace

void Load_ColumnTable(ProgramState &state) {
    const QString mode = state.RunMode.toUpper();
    if (mode == QLatin1String("WEBCLUSTER")) {
        state.SpotLine_Columns = WebColumns;
    } else if (mode == QLatin1String("TELNETCLUSTER") || mode == QLatin1String("FILE")) {
        state.SpotLine_Columns = ClusterColumns;
    } else {
        return;
    }
    state.Column_Count = 15;
}

QString Prepare_ClusterLine(const QString &received) {
    QStringView line(received);
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

void Extract_SpotFields(ProgramState &state) {
    state.Spot_Spotter = field(state, 1);
    const double megahertz = leadingNumber(fieldView(state, 3)) / 1000.0;
    if (std::fabs(megahertz) > std::numeric_limits<float>::max()) {
        throw RunTimeError(RunTimeError::Overflow);
    }
    state.Spot_Frequency = static_cast<float>(megahertz);
    state.Spot_DXCall = field(state, 5);
    state.Spot_Comment = field(state, 7);
    state.Spot_Time = field(state, 9);
    state.Spot_Tail1 = field(state, 11);
    state.Spot_Tail2 = field(state, 13);
}

void Array_RemoveAt(QStringList &list, std::int16_t index, std::optional<int> last, bool keepSize) {
    int upper = last.value_or(static_cast<int>(list.size()) - 1);
    if (upper >= list.size()) {
        throw RunTimeError(RunTimeError::SubscriptOutOfRange);
    }
    if (index < upper) {
        if (index < 0) {
            throw RunTimeError(RunTimeError::SubscriptOutOfRange);
        }
        // A rotation moves the shared string handles, never the characters.
        std::rotate(list.begin() + index, list.begin() + index + 1, list.begin() + upper + 1);
    }
    if (upper < 0) {
        return;
    }
    if (keepSize) {
        list[upper] = QString();
    } else {
        upper = std::max(upper - 1, 0);
        list.resize(upper + 1);
    }
}

void Trim_SpotLines(ProgramState &state) {
    state.Busy = true;
    // Each pass drops SpotLine_Count lines; without a positive count no pass
    // could shrink the list, so there is nothing to do.
    while (state.SpotLine_Count > 0 && state.SpotLines.size() - 1 > state.MaxSpotLines) {
        for (int i = state.SpotLine_Count; i >= 1; --i) {
            Array_RemoveAt(state.SpotLines, static_cast<std::int16_t>(i),
                           static_cast<int>(state.SpotLines.size()) - 1);
        }
        const std::int16_t upper =
            toInt16(static_cast<long long>(state.MaxSpotLines) - (state.SpotLine_Count - 1));
        state.SpotLines.resize(std::max<int>(upper, 0) + 1);
        state.SpotLine_Count =
            toInt16(static_cast<long long>(state.MaxSpotLines) - state.SpotLine_Count + 1);
    }
    state.Busy = false;
}

} // namespace zkr
