#include "PskReporterPayload.h"

#include "EsPathModel.h"
#include "Locators.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>

#include <cmath>

namespace zkr {

namespace {

// Longest call and mode we take: anything longer is no amateur call or mode
// and would only bloat the panes.
constexpr qsizetype MaxCallLength = 20;
constexpr qsizetype MaxModeLength = 16;

// A finite number within (low, high), from a JSON number.
std::optional<double> numberWithin(const QJsonValue &value, double low, double high) {
    if (!value.isDouble()) {
        return std::nullopt;
    }
    const double number = value.toDouble();
    if (!std::isfinite(number) || number <= low || number >= high) {
        return std::nullopt;
    }
    return number;
}

// Printable ASCII without blanks, upper-cased; empty when it is not.
QString word(const QJsonValue &value, qsizetype maxLength) {
    if (!value.isString()) {
        return {};
    }
    const QString text = value.toString().trimmed();
    if (text.size() > maxLength) {
        return {};
    }
    for (const QChar c : text) {
        if (c.unicode() <= u' ' || c.unicode() > u'~') {
            return {};
        }
    }
    return text.toUpper();
}

// A topic level must not hold the separator or a wildcard.
bool usableBand(const QString &band) {
    if (band.isEmpty()) {
        return false;
    }
    for (const QChar c : band) {
        if (c == u'/' || c == u'+' || c == u'#' || c.isSpace() || c.unicode() < u' ') {
            return false;
        }
    }
    return true;
}

} // namespace

PskReporterParsed parsePskReporterPayload(QByteArrayView payload, const QString &ownCall,
                                          const QString &ownLocator, const QDateTime &received) {
    PskReporterParsed result;
    result.drop = PskReporterDrop::BadPayload;
    if (payload.size() > PskReporterMaxPayloadBytes) {
        return result;
    }
    // The document copies what it keeps, so the payload need not be copied.
    const QJsonDocument document =
        QJsonDocument::fromJson(QByteArray::fromRawData(payload.data(), payload.size()));
    if (!document.isObject()) {
        return result;
    }
    const QJsonObject object = document.object();
    // Unix seconds before the year 5000, frequencies below 1 THz.
    const std::optional<double> time = numberWithin(object.value(u"t"), 0, 95617584000.0);
    const std::optional<double> hertz = numberWithin(object.value(u"f"), 0, 1e12);
    Reception report;
    report.source = ReportSource::PskReporter;
    report.tx.call = word(object.value(u"sc"), MaxCallLength);
    report.rx.call = word(object.value(u"rc"), MaxCallLength);
    if (!time || !hertz || report.tx.call.isEmpty() || report.rx.call.isEmpty()) {
        return result;
    }
    const QJsonValue txLocator = object.value(u"sl");
    const QJsonValue rxLocator = object.value(u"rl");
    report.tx.locator = Report_Locator(txLocator.isString() ? txLocator.toString() : QString());
    report.rx.locator = Report_Locator(rxLocator.isString() ? rxLocator.toString() : QString());
    if (report.tx.locator.isEmpty() || report.rx.locator.isEmpty()) {
        result.drop = PskReporterDrop::NoLocator;
        return result;
    }
    report.time = QDateTime::fromSecsSinceEpoch(static_cast<qint64>(*time), Qt::UTC);
    report.frequencyMhz = *hertz / 1e6;
    report.mode = word(object.value(u"md"), MaxModeLength);
    if (const std::optional<double> snr = numberWithin(object.value(u"rp"), -1000, 1000)) {
        report.snr = static_cast<int>(std::lround(*snr));
    }
    report.atOwnStation =
        !ownCall.isEmpty() && report.rx.call.compare(ownCall.trimmed(), Qt::CaseInsensitive) == 0;
    report.received = received;
    const QString own = Report_Locator(ownLocator);
    Evaluate_Reception(report, own.isEmpty() ? ownLocator : own);
    result.reception = std::move(report);
    result.drop = PskReporterDrop::None;
    return result;
}

QStringList pskReporterBands(const QString &text) {
    QStringList bands;
    for (const QStringView part : QStringView(text).split(u',')) {
        const QString band = part.trimmed().toString().toLower();
        if (usableBand(band) && !bands.contains(band)) {
            bands << band;
        }
    }
    return bands;
}

QStringList pskReporterTopics(const QStringList &bands) {
    QStringList topics;
    for (const QString &band : bands) {
        if (band.compare(u"all", Qt::CaseInsensitive) == 0) {
            return {QStringLiteral("pskr/filter/v2/#")};
        }
        if (usableBand(band)) {
            topics << QStringLiteral("pskr/filter/v2/%1/+/+/+/+/+/+/+").arg(band.toLower());
        }
    }
    topics.removeDuplicates();
    return topics;
}

PskReporterIntake::PskReporterIntake(const QString &ownCall, const QString &ownLocator,
                                     bool allReports)
    : ownCall_(ownCall.trimmed()), ownLocator_(ownLocator.trimmed()), allReports_(allReports) {}

std::optional<Reception> PskReporterIntake::take(QByteArrayView payload,
                                                 const QDateTime &received) {
    ++counters_.received;
    PskReporterParsed parsed = parsePskReporterPayload(payload, ownCall_, ownLocator_, received);
    switch (parsed.drop) {
    case PskReporterDrop::BadPayload:
        ++counters_.badPayload;
        return std::nullopt;
    case PskReporterDrop::NoLocator:
        ++counters_.noLocator;
        return std::nullopt;
    case PskReporterDrop::None:
        break;
    }
    const std::optional<EsPath> &es = parsed.reception->es;
    if (!allReports_ && (!es || es->ownKm > Distance_Limit)) {
        ++counters_.filtered;
        return std::nullopt;
    }
    ++counters_.kept;
    return std::move(parsed.reception);
}

} // namespace zkr
