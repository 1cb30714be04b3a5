#include "CallBookLocator.h"

#include "EsPathModel.h"
#include "Locators.h"
#include "Reception.h"
#include "RunTimeError.h"

#include <algorithm>

namespace zkr {

namespace {

double distanceKm(GeoPoint a, GeoPoint b) {
    return Great_Circle_Angle(a.latitude, b.latitude, a.longitude, b.longitude) * EarthRadius;
}

double locatorUncertaintyKm(QStringView locator) {
    return locator.size() == 6 ? CallBookLocator::SubsquareKm : CallBookLocator::SquareKm;
}

// The locators of a comment in their order: words (runs of letters and
// digits) that are locators of 4 to 10 characters, cut to six.
QStringList commentLocators(QStringView comment) {
    QStringList found;
    qsizetype start = -1;
    for (qsizetype i = 0; i <= comment.size(); ++i) {
        const bool word = i < comment.size() && comment[i].isLetterOrNumber();
        if (word && start < 0) {
            start = i;
        } else if (!word && start >= 0) {
            const qsizetype length = i - start;
            if (length >= 4 && length <= 10) {
                const QString locator = Report_Locator(comment.mid(start, length));
                if (!locator.isEmpty()) {
                    found.append(locator);
                }
            }
            start = -1;
        }
    }
    return found;
}

// A DX Spider line ends "... 1812Z JO90": the spotter's locator follows the
// time column (65 to 68 of the line without "DX de "), which the cut to 75
// characters drops, so it is read from the line as received.
QString spotterColumnLocator(QStringView received) {
    if (received.startsWith(u"DX de ")) {
        received = received.mid(6);
    }
    constexpr qsizetype Time = 64;
    if (received.size() < Time + 10 || received[Time + 4] != QLatin1Char('Z') ||
        received[Time + 5] != QLatin1Char(' ')) {
        return {};
    }
    for (qsizetype i = Time; i < Time + 4; ++i) {
        if (!received[i].isDigit()) {
            return {};
        }
    }
    QStringView rest = received.mid(Time + 5).trimmed();
    const qsizetype blank = rest.indexOf(QLatin1Char(' '));
    return Report_Locator(blank < 0 ? rest : rest.left(blank));
}

bool usableOwnLocator(const QString &locator) {
    return (locator.size() == 4 || locator.size() == 6) && !Check_Locator(locator);
}

} // namespace

CallBookLocator::CallBookLocator(qsizetype maxEntries) : book_(maxEntries) {}

void CallBookLocator::learn(const Reception &report) {
    LearnedFrom from = LearnedFrom::Wsjtx;
    if (report.source == ReportSource::AllTxt) {
        from = LearnedFrom::AllTxt;
    } else if (report.source == ReportSource::PskReporter) {
        from = LearnedFrom::PskReporter;
    }
    const QDateTime when = report.time.isValid() ? report.time : report.received;
    for (const ReportStation *station : {&report.tx, &report.rx}) {
        book_.learn(station->call, station->locator, when, from);
    }
}

void CallBookLocator::learnOwn(QStringView call, QStringView locator, const QDateTime &when) {
    book_.learn(call, locator, when, LearnedFrom::Own);
}

bool CallBookLocator::inCountry(QStringView call, QStringView locator) const {
    const auto country = countries_.find(call);
    return !country || distanceKm(Locator_Position(locator), country->position) <=
                           country->uncertaintyKm + SquareKm;
}

void CallBookLocator::learnFromSpot(const EvaluatedSpot &spot, QStringView received,
                                    const QStringList &commentLocators) {
    const QDateTime when = spot.spotTimeUtc();
    const QString spotter = normalisedCall(spot.spotter);
    // Each locator must lie in its call's country: a comment written the
    // other way round ("his <mode> mine") teaches nothing.
    const QString column = spotterColumnLocator(received);
    if (!column.isEmpty() && inCountry(spotter, column)) {
        book_.learn(spotter, column, when, LearnedFrom::Spotter);
    }
    if (commentLocators.size() == 2) {
        const QString dx = normalisedCall(spot.dxCall);
        if (inCountry(spotter, commentLocators[0]) && inCountry(dx, commentLocators[1])) {
            book_.learn(spotter, commentLocators[0], when, LearnedFrom::Comment);
            book_.learn(dx, commentLocators[1], when, LearnedFrom::Comment);
        }
    }
}

CallBookLocator::End CallBookLocator::endOf(const CallBookEntry &entry) {
    return End{entry.locator, Locator_Position(entry.locator), Located::CallBook,
               locatorUncertaintyKm(entry.locator)};
}

CallBookLocator::End CallBookLocator::endOf(const CountryPosition &country) {
    return End{LatLon_To_Locator(country.position.latitude, country.position.longitude),
               country.position, Located::Country, country.uncertaintyKm};
}

std::optional<CallBookLocator::End> CallBookLocator::endOf(QStringView call) const {
    if (call.isEmpty() || isMaritimeOrAir(call)) {
        return std::nullopt;
    }
    if (const auto entry = book_.find(call)) {
        return endOf(*entry);
    }
    if (const auto country = countries_.find(call)) {
        return endOf(*country);
    }
    return std::nullopt;
}

std::optional<CallPosition> CallBookLocator::where(QStringView text) const {
    const QString call = normalisedCall(text);
    if (call.isEmpty() || isMaritimeOrAir(call)) {
        return std::nullopt;
    }
    const auto entry = book_.find(call);
    const auto country = countries_.find(call);
    if (!entry && !country) {
        return std::nullopt;
    }
    const End end = entry ? endOf(*entry) : endOf(*country);
    CallPosition where{call,
                       end.locator,
                       end.position,
                       end.how,
                       end.uncertaintyKm,
                       {},
                       LearnedFrom::Own,
                       country ? country->country : QString()};
    if (entry) {
        where.learned = entry->learned;
        where.from = entry->from;
    }
    return where;
}

void CallBookLocator::locate(EvaluatedSpot &spot, QStringView received,
                             const AnalysisSettings &settings) {
    if (!spot.error.isEmpty() || spot.frequency <= 0) {
        return;
    }
    try {
        const QStringList inComment = commentLocators(spot.comment);
        learnFromSpot(spot, received, inComment);

        const double frequency = spot.frequency;
        const bool otherMode =
            spot.mode == QLatin1String("MS") || spot.mode == QLatin1String("TR") ||
            spot.mode == QLatin1String("EME") || spot.mode == QLatin1String("SAT");
        if (spot.es || !spot.locator2.isEmpty() || frequency < LowestEsMhz ||
            frequency > HighestEsMhz || otherMode || !usableOwnLocator(settings.ownLocator)) {
            return;
        }
        std::optional<End> spotter = endOf(normalisedCall(spot.spotter));
        std::optional<End> dx = endOf(normalisedCall(spot.dxCall));
        if (inComment.size() == 1) {
            const End comment{inComment[0], Locator_Position(inComment[0]), Located::Comment,
                              locatorUncertaintyKm(inComment[0])};
            const auto near = [&comment](const std::optional<End> &end) {
                return end && distanceKm(end->position, comment.position) <=
                                  end->uncertaintyKm + comment.uncertaintyKm;
            };
            const bool nearSpotter = near(spotter);
            if (nearSpotter != near(dx)) {
                (nearSpotter ? spotter : dx) = comment;
            }
        }
        if (!spotter || !dx) {
            return;
        }
        const double uncertainty = std::max(spotter->uncertaintyKm, dx->uncertaintyKm);
        if (uncertainty > limitKm_) {
            return;
        }
        PathPoints points;
        const EsPath path = Es_Path(dx->position, spotter->position,
                                    Locator_Position(settings.ownLocator), frequency, points);
        if (path.pathKm < EsHopMinKm || path.pathKm > EsHopMaxKm) {
            return;
        }
        spot.approximate = ApproximatePath{path,         spotter->locator, dx->locator,
                                           spotter->how, dx->how,          uncertainty};
    } catch (const RunTimeError &) {
        // A path the model cannot compute is no evidence; the spot stays as
        // it was printed.
    }
}

} // namespace zkr
