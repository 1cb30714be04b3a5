#pragma once

#include "CallKeyTable.h"
#include "CallSigns.h"

#include <QDateTime>
#include <QLatin1StringView>
#include <QList>
#include <QString>
#include <QStringView>

#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <vector>

class QIODevice;

namespace zkr {

// Where a call's locator was learned.
enum class LearnedFrom : std::uint8_t {
    Own,         // the own station's settings
    Wsjtx,       // a WSJT-X or JTDX decode at the own station
    AllTxt,      // a line of their decode log
    PskReporter, // a PSK Reporter report
    Spotter,     // the spotter's locator after the time of a cluster line
    Comment,     // a cluster comment "my locator <mode> his locator"
};

// "own", "wsjtx", "alltxt", "pskreporter", "spotter", "comment": the names
// of the history file and the CSV.
QLatin1StringView learnedFromName(LearnedFrom from);
std::optional<LearnedFrom> learnedFromName(QStringView name);

struct CallBookEntry {
    QString call;
    QString locator;   // four or six characters, upper case
    QDateTime learned; // UTC, whole seconds
    LearnedFrom from = LearnedFrom::Own;

    friend bool operator==(const CallBookEntry &, const CallBookEntry &) = default;
};

// The latest locator of each call heard with one, learned from reports and
// spots. Calls are kept as written: "DL1ABC/P" and "EA8/DL1ABC" are other
// entries than "DL1ABC", and /MM and /AM calls are never kept. Bounded: past
// maxEntries() the oldest tenth is forgotten (the own entry never), so a
// book costs a fixed amount of memory however long the program runs.
class CallBook {
public:
    explicit CallBook(qsizetype maxEntries = 500'000);

    // Keeps `locator` for `call` unless the book knows the call from a later
    // time. A square alone does not replace the known subsquare in it, only
    // renews its time; the own entry is replaced only by the own station.
    // The call is normalised (normalisedCall); a locator of 4 to 10
    // characters is cut to six. Returns whether the book changed.
    bool learn(QStringView call, QStringView locator, const QDateTime &when, LearnedFrom from);
    // Puts a stored entry back (reading the history), as learn() does, but
    // not among the changes to store.
    void restore(const CallBookEntry &entry);

    // The call exactly as written (normalised), nothing else.
    std::optional<CallBookEntry> find(QStringView call) const;
    qsizetype size() const { return static_cast<qsizetype>(table_.size()); }
    qsizetype maxEntries() const { return maxEntries_; }
    void clear();

    // The entries learned or changed since the last call, for the history.
    QList<CallBookEntry> takeChanges();
    // Every entry, in no particular order; `visit` returns false to stop.
    void forEach(const std::function<bool(const CallBookEntry &)> &visit) const;

    // The packed locator of four or six characters (0 for none) and back.
    static std::uint32_t packLocator(QStringView locator);
    static QString unpackLocator(std::uint32_t packed);

private:
    // With its key, 24 bytes: the packed locator needs 26 bits.
    struct Entry {
        std::uint32_t learned = 0; // seconds since 1970, UTC
        std::uint32_t locator : 26 = 0;
        std::uint32_t from : 3 = 0; // a LearnedFrom
        std::uint32_t changed : 1 = 0;

        LearnedFrom learnedFrom() const { return static_cast<LearnedFrom>(from); }
    };

    bool learnPacked(QStringView call, std::uint32_t locator, const QDateTime &when,
                     LearnedFrom from, bool changed);
    void forgetOldest();
    static CallBookEntry entryOf(const CallKey &key, const Entry &entry);

    CallKeyTable<Entry> table_;
    qsizetype maxEntries_;
    std::deque<CallKey> changed_; // in blocks: a long list never moves at once
};

// Writes the book as CSV, sorted by call: a header line "call,locator,
// learned_utc,source", then one line a call, the time as ISO 8601 with "Z".
void Write_CallBookCsv(QIODevice &out, const CallBook &book);

} // namespace zkr
