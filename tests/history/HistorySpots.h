#pragma once

#include "Reception.h"
#include "SpotEvaluator.h"

#include <QDateTime>
#include <QStringList>

#include <vector>

namespace zkr::test {

// Spot `i` of a reproducible mix: Es paths (some computed, some grey or
// magenta), MS, HF, unmarked, and comments with a comma and a quote, which
// CSV must quote. Each line is different.
inline EvaluatedSpot historySpot(int i, const QDateTime &received) {
    static const char *const Comments[] = {"JO90JR<ES>KP20",     "JO62QM JO65 MS", "JN25 KO05 ES",
                                           "tnx, \"Jurgen\" 73", "IO91 JN45 es",   "KP20 JO62 TR",
                                           "JO62QM ES IN80"};
    static const char *const Frequencies[] = {"50110.0",  "144300.0", "14074.0", "50313.0",
                                              "144174.0", "70150.0",  "144174.0"};
    const auto k = static_cast<std::size_t>(i % 7);
    const QString frequency = QString::fromLatin1(Frequencies[k]);
    const QString line = QStringLiteral("DX de SP9HWY:").leftJustified(24 - frequency.size()) +
                         frequency + QStringLiteral("  ") +
                         QStringLiteral("OH%1XY").arg(i).leftJustified(13) +
                         QString::fromLatin1(Comments[k]).leftJustified(31) +
                         QStringLiteral("%1Z").arg(1000 + i % 800 / 60 * 100 + i % 60, 4);
    EvaluatedSpot spot =
        SpotEvaluator({.ownLocator = QStringLiteral("JO62QM")}).evaluateClusterLine(line);
    spot.received = received;
    return spot;
}

// Report `i` of a reproducible mix: the three sources, frequencies to the Hz,
// a square alone or no locator for the station heard, some without SNR.
inline Reception historyReport(int i, const QDateTime &time) {
    static const char *const Locators[] = {"JO62QM", "IN80", "KP20LE", "", "IO91WM", "JN45"};
    Reception report;
    report.source = static_cast<ReportSource>(i % 3);
    report.time = time;
    report.frequencyMhz = ((i % 4 == 3 ? 144174000 : 50313000) + i % 2500) / 1e6;
    report.mode = i % 4 == 3 ? QStringLiteral("FT4") : QStringLiteral("FT8");
    report.snr = i % 5 == 4 ? std::optional<int>() : i % 30 - 20;
    report.tx = {QStringLiteral("EA%1AB").arg(i % 9000), QString::fromLatin1(Locators[i % 6])};
    report.rx = {QStringLiteral("DL%1XY").arg(i % 700), QString::fromLatin1(Locators[(i + 1) % 6])};
    report.atOwnStation = report.source != ReportSource::PskReporter;
    report.received = report.source == ReportSource::AllTxt ? time : time.addMSecs(1500 + i % 9);
    return report;
}

// RFC 4180 as a spreadsheet reads it: quoted fields may hold commas,
// doubled quotes and line breaks; rows end in CR LF. A bare quote or line
// break, or text after a closing quote, makes it not well formed.
inline std::vector<QStringList> parseCsv(const QString &text, bool *wellFormed) {
    std::vector<QStringList> rows(1);
    QString field;
    int quotes = 0; // 1 inside a quoted field, 2 after it
    *wellFormed = text.endsWith(QLatin1String("\r\n"));
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        const bool pair = i + 1 < text.size() && text.at(i + 1) == (c == u'"' ? u'"' : u'\n');
        if (quotes == 1) {
            quotes = c == u'"' && !pair ? 2 : 1;
            field += c == u'"' && !pair ? QString() : QString(c);
            i += c == u'"' && pair ? 1 : 0;
        } else if (c == u',' || (c == u'\r' && pair)) {
            rows.back().append(std::exchange(field, {}));
            quotes = 0;
            if (c == u'\r') {
                rows.emplace_back();
                ++i;
            }
        } else if (c == u'"' && field.isEmpty() && quotes == 0) {
            quotes = 1;
        } else {
            *wellFormed = *wellFormed && c != u'"' && c != u'\r' && c != u'\n' && quotes == 0;
            field += c;
        }
    }
    rows.pop_back();
    return rows;
}

} // namespace zkr::test
