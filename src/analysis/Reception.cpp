#include "Reception.h"

#include "EsPathModel.h"
#include "Locators.h"
#include "RunTimeError.h"

namespace zkr {

QLatin1StringView reportSourceName(ReportSource source) {
    switch (source) {
    case ReportSource::Wsjtx:
        return QLatin1StringView("wsjtx");
    case ReportSource::AllTxt:
        return QLatin1StringView("alltxt");
    case ReportSource::PskReporter:
        return QLatin1StringView("pskreporter");
    }
    return {};
}

std::optional<ReportSource> reportSourceFromName(QStringView name) {
    for (const ReportSource source :
         {ReportSource::Wsjtx, ReportSource::AllTxt, ReportSource::PskReporter}) {
        if (name == reportSourceName(source)) {
            return source;
        }
    }
    return std::nullopt;
}

bool Reception::isEsHop() const {
    return es && es->pathKm >= EsHopMinKm && es->pathKm <= EsHopMaxKm;
}

bool Evaluate_Reception(Reception &report, const QString &ownLocator) {
    report.es.reset();
    const auto usable = [](const QString &locator) {
        return (locator.size() == 4 || locator.size() == 6) && !Check_Locator(locator);
    };
    if (!usable(report.tx.locator) || !usable(report.rx.locator) || !usable(ownLocator)) {
        return false;
    }
    try {
        PathPoints points;
        report.es = Es_Path(Locator_Position(report.tx.locator),
                            Locator_Position(report.rx.locator), Locator_Position(ownLocator),
                            report.frequencyMhz, points);
    } catch (const RunTimeError &) {
        // A path the model cannot compute is no evidence.
        return false;
    }
    return true;
}

} // namespace zkr
