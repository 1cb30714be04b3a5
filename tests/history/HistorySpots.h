#pragma once

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
    AnalysisSettings settings;
    settings.ownLocator = QStringLiteral("JO62QM");
    EvaluatedSpot spot = SpotEvaluator(settings).evaluateClusterLine(line);
    spot.received = received;
    return spot;
}

// RFC 4180 as a spreadsheet reads it: rows of fields, quoted fields may hold
// commas, doubled quotes and line breaks; rows end in CR LF.
inline std::vector<QStringList> parseCsv(const QString &text, bool *wellFormed) {
    std::vector<QStringList> rows;
    QStringList row;
    QString field;
    bool quoted = false;
    bool wasQuoted = false;
    *wellFormed = true;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (quoted) {
            if (c == u'"' && i + 1 < text.size() && text.at(i + 1) == u'"') {
                field += c;
                ++i;
            } else if (c == u'"') {
                quoted = false;
            } else {
                field += c;
            }
        } else if (c == u'"' && field.isEmpty() && !wasQuoted) {
            quoted = wasQuoted = true;
        } else if (c == u',') {
            row.append(field);
            field.clear();
            wasQuoted = false;
        } else if (c == u'\r' && i + 1 < text.size() && text.at(i + 1) == u'\n') {
            row.append(field);
            rows.push_back(row);
            row.clear();
            field.clear();
            wasQuoted = false;
            ++i;
        } else if (c == u'"' || c == u'\r' || c == u'\n' || wasQuoted) {
            *wellFormed = false; // a bare quote, a bare line break or text after a closing quote
        } else {
            field += c;
        }
    }
    *wellFormed = *wellFormed && !quoted && field.isEmpty() && row.isEmpty();
    return rows;
}

} // namespace zkr::test
