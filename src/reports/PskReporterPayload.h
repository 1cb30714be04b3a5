#pragma once

#include "Reception.h"

#include <QByteArrayView>
#include <QDateTime>
#include <QString>
#include <QStringList>

#include <optional>

namespace zkr {

// PSK Reporter's live feed: one JSON object per MQTT message, e.g.
//   {"sq":30142870791,"f":50313500,"md":"FT8","rp":-5,"t":1718035200,
//    "sc":"SP2EWQ","sl":"JO93fn42","rc":"EA8BFK","rl":"IL18qi","sa":269,"ra":29,"b":"6m"}
// f is the frequency in Hz, t the Unix time of the reception, rp the SNR in
// dB, s* the sender (the station heard), r* the receiver. sq, t_tx, sa, ra,
// b and any field we do not know are ignored.

// Why a payload gave no reception.
enum class PskReporterDrop : quint8 {
    None,
    BadPayload, // not JSON, not an object, a required field missing or of the wrong kind
    NoLocator,  // the sender's or the receiver's locator missing or no locator
};

struct PskReporterParsed {
    std::optional<Reception> reception;
    PskReporterDrop drop = PskReporterDrop::None;
};

// Payloads larger than this are no report (real ones are about 200 bytes).
inline constexpr qsizetype PskReporterMaxPayloadBytes = 4096;

// Reads one payload into a reception from PSK Reporter with its Es path for
// `ownLocator` computed. `ownCall` marks reports whose receiver is the own
// call (the own decoder reporting to PSK Reporter) as heard at the own
// station; calls compare without regard to case.
PskReporterParsed parsePskReporterPayload(QByteArrayView payload, const QString &ownCall,
                                          const QString &ownLocator, const QDateTime &received);

// The band names of a setting such as "6m, 4m,2m" (lower case, no
// repetition, in the given order). A name that cannot be a topic level
// (empty, or holding '/', '+', '#' or a blank) is left out.
QStringList pskReporterBands(const QString &text);

// The topics to subscribe to for these bands: one filter topic per band,
// pskr/filter/v2/{band}/+/+/+/+/+/+/+ (mode, both calls, both locators,
// both countries), or the whole tree pskr/filter/v2/# when a band is "all".
QStringList pskReporterTopics(const QStringList &bands);

// What the feed did with the payloads it was given.
struct PskReporterCounters {
    quint64 received = 0;   // payloads that arrived
    quint64 badPayload = 0; // dropped: unreadable
    quint64 noLocator = 0;  // dropped: a locator missing
    quint64 filtered = 0;   // readable, but the cloud is too far from the own station
    quint64 kept = 0;       // handed on

    friend bool operator==(const PskReporterCounters &, const PskReporterCounters &) = default;
};

// Turns payloads into receptions for one own station and keeps by default
// only those whose cloud lies within Distance_Limit of it: the feed carries
// the whole world, the panes want what the own station can use. A report
// whose path cannot be computed for the own station counts as too far.
class PskReporterIntake {
public:
    PskReporterIntake() = default;
    PskReporterIntake(const QString &ownCall, const QString &ownLocator, bool allReports);

    // The reception to hand on, or nothing when it was dropped or filtered.
    std::optional<Reception> take(QByteArrayView payload, const QDateTime &received);

    const PskReporterCounters &counters() const { return counters_; }

private:
    QString ownCall_;
    QString ownLocator_;
    bool allReports_ = false;
    PskReporterCounters counters_;
};

} // namespace zkr
