#include "ReportOutput.h"

#include "EsPathModel.h"
#include "Reception.h"
#include "ResultOutput.h"
#include "RunTimeError.h"

namespace zkr {

namespace {

QString padded(const QString &text, int width) {
    return text.leftJustified(width, QLatin1Char(' '), true);
}

} // namespace

bool Is_ReportInRange(const Reception &report) {
    return report.es && report.es->ownKm < Distance_Limit;
}

QList<TextRun> Report_Runs(const Reception &report) {
    // The field printers of the spots work on a spot: the report lends them
    // its frequency, its path and, for a single Es hop, the Es mode.
    EvaluatedSpot spot;
    spot.frequency = static_cast<float>(report.frequencyMhz);
    spot.mode = report.isEsHop() ? QStringLiteral("ES") : QStringLiteral("??");
    spot.es = report.es;
    const QString snr = report.snr ? QString::number(*report.snr) : QString();
    QString line = report.time.toUTC().toString(QStringLiteral("HHmm")) + QStringLiteral("Z ") +
                   QString::number(report.frequencyMhz, 'f', 4).rightJustified(9) +
                   QLatin1Char(' ') + padded(report.mode, 4) + QLatin1Char(' ') +
                   snr.rightJustified(3) + QLatin1Char(' ') + padded(report.tx.call, 10) +
                   QLatin1Char(' ') + padded(report.tx.locator, 6) + QStringLiteral(" > ") +
                   padded(report.rx.call, 10) + QLatin1Char(' ') + padded(report.rx.locator, 6);
    if (report.es) {
        line += QString::number(static_cast<long long>(report.es->pathKm + 0.5)).rightJustified(6) +
                QStringLiteral(" km");
    }
    // The source in a column of its own, so that the fields line up; a
    // blank before them, which may begin with "Es? ".
    line += QLatin1Char(' ') + padded(QString(reportSourceName(report.source)), 11) +
            QLatin1Char(' ');
    spot.runs.append(TextRun{line, Color_Black});
    if (spot.es) {
        try {
            Print_MufField(spot);
            Print_MidSquare(spot);
            Print_FotField(spot);
            Print_AzField(spot);
            return spot.runs;
        } catch (const RunTimeError &) {
            // A frequency too large to print its results (a broken report)
            // shows the report alone.
            spot.runs.resize(1);
        }
    }
    Print_LineEnd(spot);
    return spot.runs;
}

} // namespace zkr
