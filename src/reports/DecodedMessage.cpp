#include "DecodedMessage.h"

#include "Locators.h"
#include "Reception.h"

namespace zkr {

namespace {

bool isBlank(char c) {
    return static_cast<unsigned char>(c) <= ' ';
}

bool within(char c, char low, char high) {
    return c >= low && c <= high;
}

bool allOf(QByteArrayView word, char low, char high) {
    return std::all_of(word.begin(), word.end(), [&](char c) { return within(c, low, high); });
}

// A call has letters and digits and may hold "/" (portable, prefixes).
bool isCall(QByteArrayView word) {
    if (word.size() < 3 || word.size() > 13) {
        return false;
    }
    bool digit = false;
    bool letter = false;
    for (const char c : word) {
        if (within(c, '0', '9')) {
            digit = true;
        } else if (within(c, 'A', 'Z')) {
            letter = true;
        } else if (c != '/') {
            return false;
        }
    }
    return digit && letter;
}

// "<K1ABC>" is a call sent as a hash the decoder could resolve; "<...>" one
// it could not.
QByteArrayView unhashed(QByteArrayView word) {
    if (word.size() >= 2 && word.front() == '<' && word.back() == '>') {
        return word.sliced(1, word.size() - 2);
    }
    return word;
}

// "CQ DX", "CQ NA", "CQ POTA", "CQ 280".
bool isCqModifier(QByteArrayView word) {
    return (word.size() >= 1 && word.size() <= 4 && allOf(word, 'A', 'Z')) ||
           (word.size() == 3 && allOf(word, '0', '9'));
}

// The EU VHF contest's report and serial number, "590003".
bool isContestExchange(QByteArrayView word) {
    return word.size() == 6 && word.front() == '5' && allOf(word, '0', '9');
}

bool isGrid(QByteArrayView word) {
    if (word == "RR73") {
        return false; // the last reply of a contact, spelled like a square
    }
    if (word.size() != 4 && word.size() != 6) {
        return false;
    }
    return within(word[0], 'A', 'R') && within(word[1], 'A', 'R') && within(word[2], '0', '9') &&
           within(word[3], '0', '9') &&
           (word.size() == 4 || (within(word[4], 'A', 'X') && within(word[5], 'A', 'X')));
}

} // namespace

LineWords splitWords(QByteArrayView text) {
    LineWords words;
    qsizetype i = 0;
    while (words.count < LineWords::Max) {
        while (i < text.size() && isBlank(text[i])) {
            ++i;
        }
        if (i == text.size()) {
            break;
        }
        const qsizetype start = i;
        while (i < text.size() && !isBlank(text[i])) {
            ++i;
        }
        words.word[words.count++] = text.sliced(start, i - start);
    }
    return words;
}

std::optional<MessageSender> messageSender(QByteArrayView message) {
    const LineWords words = splitWords(message);
    int i = words.at(0) == "TU;" ? 1 : 0;
    if (words.at(i + 1) == "RR73;") {
        i += 2; // the fox's answer to two hounds at once: the second part names the fox
    }
    const QByteArrayView first = words.at(i);
    int senderAt = i + 1;
    int gridAt = senderAt + 1;
    if (first == "CQ" || first == "QRZ" || first == "DE") {
        if (isCqModifier(words.at(senderAt)) && isCall(unhashed(words.at(senderAt + 1)))) {
            ++senderAt;
            ++gridAt;
        }
    } else {
        const QByteArrayView to = unhashed(first);
        if (!isCall(to) && to != "...") {
            return std::nullopt;
        }
        if (words.at(gridAt) == "R") {
            ++gridAt;
        }
        if (isContestExchange(words.at(gridAt))) {
            ++gridAt;
        }
    }
    const QByteArrayView call = unhashed(words.at(senderAt));
    if (!isCall(call)) {
        return std::nullopt;
    }
    const QByteArrayView grid = words.at(gridAt);
    return MessageSender{call, isGrid(grid) ? grid : QByteArrayView()};
}

void HeardGrids::remember(const QString &call, const QString &grid) {
    if (call.isEmpty() || grid.isEmpty()) {
        return;
    }
    recent_.insert(call, grid);
    if (recent_.size() >= half_) {
        older_ = std::move(recent_);
        recent_ = {};
    }
}

QString HeardGrids::find(const QString &call) {
    if (const auto it = recent_.constFind(call); it != recent_.constEnd()) {
        return *it;
    }
    const auto old = older_.constFind(call);
    if (old == older_.constEnd()) {
        return {};
    }
    const QString grid = *old;
    remember(call, grid); // heard again: kept for another generation
    return grid;
}

void HeardGrids::clear() {
    recent_.clear();
    older_.clear();
}

bool readTransmitter(Reception &report, QByteArrayView message, HeardGrids &grids) {
    const std::optional<MessageSender> sender = messageSender(message);
    if (!sender) {
        return false;
    }
    report.tx.call = QString::fromLatin1(sender->call);
    if (sender->grid.isEmpty()) {
        report.tx.locator = grids.find(report.tx.call);
    } else {
        report.tx.locator = Report_Locator(QString::fromLatin1(sender->grid));
        grids.remember(report.tx.call, report.tx.locator);
    }
    return !report.tx.locator.isEmpty();
}

} // namespace zkr
