#include "ClusterFeed.h"

#include "PageDecoding.h"

#include <array>
#include <cstring>

namespace zkr {

namespace {

// Telnet command bytes (RFC 854).
constexpr unsigned char Iac = 255;
constexpr unsigned char Dont = 254;
constexpr unsigned char Do = 253;
constexpr unsigned char Wont = 252;
constexpr unsigned char Will = 251;
constexpr unsigned char Sb = 250;
constexpr unsigned char Se = 240;
constexpr char Bel = 7;
constexpr QByteArrayView SpotStart("DX de ");

enum TelnetState { Data, AfterIac, AfterVerb, InSub, InSubAfterIac };

// A line longer than this is cut here: a node that never ends its line must
// not fill the memory. Far above any line a cluster sends.
constexpr qsizetype MaxLineBytes = 1024 * 1024;

// Bytes that stop the plain-text scan: line ends, NUL (the telnet no-op)
// and IAC.
constexpr std::array<bool, 256> specialBytes() {
    std::array<bool, 256> table{};
    table['\r'] = true;
    table['\n'] = true;
    table[0] = true;
    table[Iac] = true;
    return table;
}
constexpr std::array<bool, 256> Special = specialBytes();

// The line ends in ">" and is no text that ends in a placeholder: DX Spider
// welcomes with "Please enter your name, set/name <your name>", and the
// welcome belongs in the block of the prompt that follows it.
bool isPrompt(QStringView line) {
    if (!line.endsWith(QLatin1Char('>'))) {
        return false;
    }
    const qsizetype open = line.lastIndexOf(QLatin1Char('<'));
    return open < 0 || line.first(line.size() - 1).lastIndexOf(QLatin1Char('>')) > open;
}

// The text ends in "login:", "call:" or "callsign:" (any case), blanks
// allowed after the colon.
bool endsInLoginRequest(QByteArrayView text) {
    qsizetype end = text.size();
    while (end > 0 && (text.at(end - 1) == ' ' || text.at(end - 1) == '\t')) {
        --end;
    }
    const auto endsWith = [&](const char *word) {
        const auto n = static_cast<qsizetype>(std::strlen(word));
        if (end < n) {
            return false;
        }
        for (qsizetype i = 0; i < n; ++i) {
            char c = text.at(end - n + i);
            if (c >= 'A' && c <= 'Z') {
                c = static_cast<char>(c - 'A' + 'a');
            }
            if (c != word[i]) {
                return false;
            }
        }
        return true;
    };
    return endsWith("login:") || endsWith("call:") || endsWith("callsign:");
}

// Where the text after a login request starts in a line that is no spot
// line, or -1. The request is left unterminated, so what the node sends
// after the login is glued to it: a spot sent at once, or the welcome when
// the request began the line ("login: Hello DL1ABC, this is GB7TST").
qsizetype afterLoginRequest(QByteArrayView line) {
    for (qsizetype at = line.indexOf(SpotStart); at > 0; at = line.indexOf(SpotStart, at + 1)) {
        if (endsInLoginRequest(line.first(at))) {
            return at;
        }
    }
    // "login:", "call:" or "callsign:" as the line's first word.
    const qsizetype colon = line.indexOf(':');
    if ((colon != 5 && colon != 4 && colon != 8) || !endsInLoginRequest(line.first(colon + 1)) ||
        (colon == 5 && (line.at(0) | 0x20) != 'l')) {
        return -1;
    }
    qsizetype rest = colon + 1;
    while (rest < line.size() && (line.at(rest) == ' ' || line.at(rest) == '\t')) {
        ++rest;
    }
    return rest < line.size() ? rest : -1;
}

// Removes BEL pairs, the first pair each time: of a run of n bells n % 2
// stay.
QByteArray withoutBellPairs(const char *data, qsizetype size) {
    QByteArray out;
    out.reserve(size);
    qsizetype i = 0;
    while (i < size) {
        if (data[i] != Bel) {
            out.append(data[i]);
            ++i;
            continue;
        }
        qsizetype run = 0;
        while (i < size && data[i] == Bel) {
            ++run;
            ++i;
        }
        if (run % 2 != 0) {
            out.append(Bel);
        }
    }
    return out;
}

} // namespace

ClusterFeed::ClusterFeed(QObject *parent) : QObject(parent) {}

void ClusterFeed::reset() {
    partial_.clear();
    block_.clear();
    afterCr_ = false;
    loggedIn_ = false;
    telnetState_ = Data;
    telnetVerb_ = 0;
    ++generation_;
}

void ClusterFeed::appendPartial(const char *data, qsizetype size) {
    while (size > 0) {
        if (partial_.size() >= MaxLineBytes) {
            takeLine();
        }
        const qsizetype take = std::min(size, MaxLineBytes - partial_.size());
        partial_.append(data, take);
        data += take;
        size -= take;
    }
}

void ClusterFeed::receive(QByteArrayView bytes) {
    const quint64 generation = generation_;
    const char *p = bytes.data();
    const char *const end = p + bytes.size();
    while (p < end) {
        if (telnetState_ != Data) {
            telnetByte(static_cast<unsigned char>(*p++));
            continue;
        }
        const char *const run = p;
        while (p < end && !Special[static_cast<unsigned char>(*p)]) {
            ++p;
        }
        if (p > run) {
            afterCr_ = false;
        }
        if (p == end) {
            appendPartial(run, p - run);
            break;
        }
        const char c = *p++;
        if (c == '\r' || c == '\n') {
            if (c == '\n' && afterCr_) {
                afterCr_ = false; // the LF of a CR LF
                continue;
            }
            if (partial_.isEmpty() && p - 1 - run <= MaxLineBytes) {
                // The usual case, a whole line in one read: no copy.
                emitLine(run, p - 1 - run);
            } else {
                appendPartial(run, p - 1 - run);
                takeLine();
            }
            afterCr_ = c == '\r';
        } else {
            // NUL is skipped; IAC starts a command. Neither ends a CR LF.
            appendPartial(run, p - 1 - run);
            if (static_cast<unsigned char>(c) == Iac) {
                telnetState_ = AfterIac;
            }
        }
        if (generation != generation_) {
            return; // a receiver reset the feed: the rest belongs to the old link
        }
    }
    if (!loggedIn_ && !partial_.startsWith(SpotStart) && endsInLoginRequest(partial_)) {
        loggedIn_ = true;
        Q_EMIT loginRequested();
    }
}

void ClusterFeed::telnetByte(unsigned char c) {
    switch (telnetState_) {
    case AfterIac:
    case InSubAfterIac:
        if (telnetState_ == InSubAfterIac && c != Se && c != Iac) {
            // A broken subnegotiation ends at the next command.
            telnetState_ = AfterIac;
        }
        if (c == Iac) {
            if (telnetState_ == InSubAfterIac) {
                telnetState_ = InSub; // an escaped 255 inside the subnegotiation
            } else {
                const char ff = static_cast<char>(Iac);
                appendPartial(&ff, 1);
                afterCr_ = false;
                telnetState_ = Data;
            }
        } else if (c >= Will && c <= Dont) {
            telnetVerb_ = static_cast<char>(c);
            telnetState_ = AfterVerb;
        } else if (c == Sb) {
            telnetState_ = InSub;
        } else {
            telnetState_ = Data; // SE, NOP, GA and the like: nothing to do
        }
        break;
    case AfterVerb: {
        const auto verb = static_cast<unsigned char>(telnetVerb_);
        telnetState_ = Data;
        if (verb == Will || verb == Do) {
            QByteArray reply(3, '\0');
            reply[0] = static_cast<char>(Iac);
            reply[1] = static_cast<char>(verb == Will ? Dont : Wont);
            reply[2] = static_cast<char>(c);
            Q_EMIT telnetReply(reply);
        }
        break;
    }
    case InSub:
        if (c == Iac) {
            telnetState_ = InSubAfterIac;
        }
        break;
    default:
        telnetState_ = Data;
        break;
    }
}

void ClusterFeed::finish() {
    if (!partial_.isEmpty()) {
        takeLine();
    }
    afterCr_ = false;
    telnetState_ = Data;
}

void ClusterFeed::takeLine() {
    emitLine(partial_.constData(), partial_.size());
    partial_.resize(0); // keeps the capacity for the next cut line
}

void ClusterFeed::emitLine(const char *data, qsizetype size) {
    if (std::memchr(data, Bel, static_cast<std::size_t>(size)) != nullptr) {
        const QByteArray clean = withoutBellPairs(data, size);
        handleLine(clean);
    } else {
        handleLine(QByteArrayView(data, size));
    }
}

void ClusterFeed::handleLine(QByteArrayView bytes) {
    if (!bytes.startsWith(SpotStart)) {
        // Decided on the whole line, not where a read ended, so that a
        // replay of the same bytes cuts it alike.
        if (const qsizetype spot = afterLoginRequest(bytes); spot > 0) {
            const quint64 generation = generation_;
            handleLine(bytes.first(spot));
            if (generation == generation_) {
                handleLine(bytes.sliced(spot));
            }
            return;
        }
    }
    bool utf8 = false;
    QString line = decodeClusterLine(bytes, &utf8);
    Q_EMIT lineReceived(line);
    if (bytes.startsWith(SpotStart)) {
        loggedIn_ = true;
        block_.clear();
        emitSpots(bytes, std::move(line), utf8);
        return;
    }
    if (isPrompt(line)) {
        const QLatin1String lineEnd("\r\n");
        const QLatin1String margin("\r\n\r\n\r\n");
        qsizetype size = 2 * margin.size() + line.size() + lineEnd.size();
        for (const QString &kept : std::as_const(block_)) {
            size += kept.size() + lineEnd.size();
        }
        QString block;
        block.reserve(size);
        block += margin;
        for (const QString &kept : std::as_const(block_)) {
            block += kept;
            block += lineEnd;
        }
        block += line;
        block += lineEnd;
        block += margin;
        block_.clear();
        loggedIn_ = true;
        Q_EMIT promptBlock(block);
        return;
    }
    block_.append(std::move(line));
    if (block_.size() > MaxBlockLines) {
        block_.removeFirst();
    }
}

void ClusterFeed::emitSpots(QByteArrayView bytes, QString line, bool utf8) {
    qsizetype next = bytes.indexOf(SpotStart, SpotStart.size());
    if (next < 0) {
        Q_EMIT spotLine(line, utf8);
        return;
    }
    // Records glued without a line end: each "DX de " starts one, decoded
    // by itself.
    const quint64 generation = generation_;
    qsizetype at = 0;
    while (at >= 0 && generation == generation_) {
        const qsizetype end = next < 0 ? bytes.size() : next;
        bool pieceUtf8 = false;
        const QString piece = decodeClusterLine(bytes.sliced(at, end - at), &pieceUtf8);
        Q_EMIT spotLine(piece, pieceUtf8);
        at = next;
        next = next < 0 ? -1 : bytes.indexOf(SpotStart, next + SpotStart.size());
    }
}

} // namespace zkr
