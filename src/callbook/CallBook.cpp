#include "CallBook.h"

#include "Locators.h"

#include <QIODevice>

#include <algorithm>
#include <limits>

namespace zkr {

namespace {

bool looksLikeCall(QStringView call) {
    const bool digit = std::any_of(call.begin(), call.end(), [](QChar c) { return c.isDigit(); });
    const bool letter = std::any_of(call.begin(), call.end(), [](QChar c) { return c.isLetter(); });
    return digit && letter && call.size() >= 3;
}

std::uint32_t toSeconds(const QDateTime &when) {
    return static_cast<std::uint32_t>(
        std::clamp<qint64>(when.toSecsSinceEpoch(), 1, std::numeric_limits<std::uint32_t>::max()));
}

// The square of a packed locator: what remains when the subsquare is cut.
std::uint32_t squareOf(std::uint32_t packed) {
    return (packed - 1) / (2 * 24 * 24);
}

bool isSquareOnly(std::uint32_t packed) {
    return ((packed - 1) & 1U) == 0;
}

} // namespace

QLatin1StringView learnedFromName(LearnedFrom from) {
    switch (from) {
    case LearnedFrom::Own:
        return QLatin1StringView("own");
    case LearnedFrom::Wsjtx:
        return QLatin1StringView("wsjtx");
    case LearnedFrom::AllTxt:
        return QLatin1StringView("alltxt");
    case LearnedFrom::PskReporter:
        return QLatin1StringView("pskreporter");
    case LearnedFrom::Spotter:
        return QLatin1StringView("spotter");
    case LearnedFrom::Comment:
        return QLatin1StringView("comment");
    }
    return {};
}

std::optional<LearnedFrom> learnedFromName(QStringView name) {
    for (int i = 0; i <= static_cast<int>(LearnedFrom::Comment); ++i) {
        const auto from = static_cast<LearnedFrom>(i);
        if (name == learnedFromName(from)) {
            return from;
        }
    }
    return std::nullopt;
}

std::uint32_t CallBook::packLocator(QStringView locator) {
    const QString usable = Report_Locator(locator);
    if (usable.isEmpty()) {
        return 0;
    }
    const auto at = [&usable](int i, char16_t base) {
        return static_cast<std::uint32_t>(usable[i].unicode() - base);
    };
    const bool six = usable.size() == 6;
    std::uint32_t value = at(0, u'A') * 18 + at(1, u'A');
    value = (value * 10 + at(2, u'0')) * 10 + at(3, u'0');
    value = (value * 24 + (six ? at(4, u'A') : 0)) * 24 + (six ? at(5, u'A') : 0);
    return (value * 2 + (six ? 1 : 0)) + 1;
}

QString CallBook::unpackLocator(std::uint32_t packed) {
    if (packed == 0) {
        return {};
    }
    std::uint32_t value = packed - 1;
    const bool six = (value & 1U) != 0;
    value /= 2;
    char16_t c[6];
    c[5] = static_cast<char16_t>(u'A' + value % 24);
    value /= 24;
    c[4] = static_cast<char16_t>(u'A' + value % 24);
    value /= 24;
    c[3] = static_cast<char16_t>(u'0' + value % 10);
    value /= 10;
    c[2] = static_cast<char16_t>(u'0' + value % 10);
    value /= 10;
    c[1] = static_cast<char16_t>(u'A' + value % 18);
    c[0] = static_cast<char16_t>(u'A' + value / 18);
    return QString(reinterpret_cast<const QChar *>(c), six ? 6 : 4);
}

CallBook::CallBook(qsizetype maxEntries) : maxEntries_(std::max<qsizetype>(maxEntries, 10)) {}

void CallBook::clear() {
    table_.clear();
    changed_.clear();
}

bool CallBook::learn(QStringView call, QStringView locator, const QDateTime &when,
                     LearnedFrom from) {
    return learnPacked(normalisedCall(call), packLocator(locator), when, from, true);
}

void CallBook::restore(const CallBookEntry &entry) {
    learnPacked(normalisedCall(entry.call), packLocator(entry.locator), entry.learned, entry.from,
                false);
}

bool CallBook::learnPacked(QStringView call, std::uint32_t locator, const QDateTime &when,
                           LearnedFrom from, bool changed) {
    if (locator == 0 || !when.isValid() || isMaritimeOrAir(call) || !looksLikeCall(call)) {
        return false;
    }
    const auto key = CallKey::pack(call);
    if (!key) {
        return false;
    }
    const std::uint32_t seconds = toSeconds(when);
    if (size() >= maxEntries_ && table_.find(*key) == nullptr) {
        forgetOldest();
    }
    // Through insert() also when the call is known: it moves the table along
    // when it grows.
    bool inserted = false;
    Entry *entry = &table_.insert(*key, inserted);
    if (!inserted) {
        const bool own = entry->learnedFrom() == LearnedFrom::Own;
        if ((own && from != LearnedFrom::Own) || (!own && seconds < entry->learned)) {
            return false;
        }
        if (isSquareOnly(locator) && !isSquareOnly(entry->locator) &&
            squareOf(locator) == squareOf(entry->locator)) {
            locator = entry->locator; // the subsquare known stays
            from = entry->learnedFrom();
        }
        if (entry->locator == locator && entry->learned == seconds &&
            entry->learnedFrom() == from) {
            return false;
        }
    }
    entry->locator = locator;
    entry->learned = seconds;
    entry->from = static_cast<std::uint32_t>(from);
    if (changed && entry->changed == 0) {
        entry->changed = 1;
        changed_.push_back(*key);
    }
    return true;
}

void CallBook::forgetOldest() {
    // Once per tenth of the book, two passes that move nothing: a few
    // milliseconds for a full book.
    std::vector<std::uint32_t> times;
    times.reserve(table_.size());
    table_.forEach([&times](const CallKey &, const Entry &entry) {
        if (entry.learnedFrom() != LearnedFrom::Own) {
            times.push_back(entry.learned);
        }
        return true;
    });
    const std::size_t forget = std::min<std::size_t>(times.size(), table_.size() / 10 + 1);
    if (forget == 0) {
        return;
    }
    std::nth_element(times.begin(), times.begin() + static_cast<qsizetype>(forget - 1),
                     times.end());
    const std::uint32_t newestForgotten = times[forget - 1];
    std::size_t forgotten = 0;
    table_.eraseIf([&](const CallKey &, const Entry &entry) {
        const bool forgets = entry.learnedFrom() != LearnedFrom::Own &&
                             (entry.learned < newestForgotten ||
                              (entry.learned == newestForgotten && forgotten < forget));
        forgotten += forgets ? 1 : 0;
        return forgets;
    });
    changed_.erase(std::remove_if(changed_.begin(), changed_.end(),
                                  [this](const CallKey &key) { return !table_.find(key); }),
                   changed_.end());
}

std::optional<CallBookEntry> CallBook::find(QStringView call) const {
    const auto key = CallKey::pack(normalisedCall(call));
    const Entry *entry = key ? table_.find(*key) : nullptr;
    if (entry == nullptr) {
        return std::nullopt;
    }
    return entryOf(*key, *entry);
}

CallBookEntry CallBook::entryOf(const CallKey &key, const Entry &entry) {
    return CallBookEntry{key.unpack(), unpackLocator(entry.locator),
                         QDateTime::fromSecsSinceEpoch(entry.learned, Qt::UTC),
                         entry.learnedFrom()};
}

QList<CallBookEntry> CallBook::takeChanges() {
    QList<CallBookEntry> changes;
    changes.reserve(static_cast<qsizetype>(changed_.size()));
    for (const CallKey &key : changed_) {
        Entry *entry = table_.find(key);
        if (entry != nullptr && entry->changed != 0) {
            entry->changed = 0;
            changes.append(entryOf(key, *entry));
        }
    }
    changed_.clear();
    return changes;
}

void CallBook::forEach(const std::function<bool(const CallBookEntry &)> &visit) const {
    table_.forEach(
        [&visit](const CallKey &key, const Entry &entry) { return visit(entryOf(key, entry)); });
}

void Write_CallBookCsv(QIODevice &out, const CallBook &book) {
    QList<CallBookEntry> entries;
    entries.reserve(book.size());
    book.forEach([&entries](const CallBookEntry &entry) {
        entries.append(entry);
        return true;
    });
    std::sort(entries.begin(), entries.end(),
              [](const CallBookEntry &a, const CallBookEntry &b) { return a.call < b.call; });
    QByteArray text("call,locator,learned_utc,source\n");
    for (const CallBookEntry &entry : entries) {
        // Calls and locators hold no comma or quote: no quoting needed.
        text += entry.call.toLatin1() + ',' + entry.locator.toLatin1() + ',' +
                entry.learned.toString(Qt::ISODate).toLatin1() + ',' +
                learnedFromName(entry.from).toString().toLatin1() + '\n';
        if (text.size() >= (1 << 16)) {
            out.write(text);
            text.clear();
        }
    }
    out.write(text);
}

} // namespace zkr
