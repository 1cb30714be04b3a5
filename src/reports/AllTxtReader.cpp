#include "AllTxtReader.h"

#include "Locators.h"

#include <QDate>
#include <QIODevice>

namespace zkr {

namespace {

// No log line comes near this; more is not a log.
constexpr qsizetype MaxLineBytes = 1024;
constexpr qint64 SecondsPerDay = 24 * 60 * 60;
// Where the low-confidence mark of WSJT-X sits in its 37-character message
// field, and the width of JTDX's message field, which its flag follows.
constexpr qsizetype WsjtxMarkAt = 36;
constexpr qsizetype JtdxMessageWidth = 26;

// The number of `count` digits at `at`, or -1.
int digits(QByteArrayView text, qsizetype at, qsizetype count) {
    if (at + count > text.size()) {
        return -1;
    }
    int value = 0;
    for (qsizetype i = at; i < at + count; ++i) {
        if (text[i] < '0' || text[i] > '9') {
            return -1;
        }
        value = value * 10 + (text[i] - '0');
    }
    return value;
}

// Midnight UTC of a date, seconds since the epoch; -1 for no date.
qint64 dayStart(int year, int month, int day) {
    if (!QDate::isValid(year, month, day)) {
        return -1;
    }
    // Days from civil (H. Hinnant): no QDate built per line.
    const int y = year - (month <= 2 ? 1 : 0);
    const int era = y / 400;
    const int yearOfEra = y - era * 400;
    const int dayOfYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
    const int dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return (era * 146097LL + dayOfEra - 719468) * SecondsPerDay;
}

// "hhmmss" or "hhmm" at `at`: seconds of the day, or -1.
qint64 timeOfDay(QByteArrayView text, qsizetype at) {
    const qsizetype size = text.size() - at;
    const int hours = digits(text, at, 2);
    const int minutes = digits(text, at + 2, 2);
    const int seconds = size == 6 ? digits(text, at + 4, 2) : size == 4 ? 0 : -1;
    if (hours < 0 || hours > 23 || minutes < 0 || minutes > 59 || seconds < 0 || seconds > 59) {
        return -1;
    }
    return hours * 3600 + minutes * 60 + seconds;
}

// "yyMMdd_hhmmss" (digitsOfYear 2) or "yyyyMMdd_hhmmss" / "yyyyMMdd_hhmm"
// (4): seconds since the epoch, or -1.
qint64 stamp(QByteArrayView word, int digitsOfYear) {
    const qsizetype time = digitsOfYear + 5;
    if (word.size() <= time || word[time - 1] != '_') {
        return -1;
    }
    const int year = digits(word, 0, digitsOfYear);
    const qint64 day =
        year < 0 ? -1
                 : dayStart(year + (digitsOfYear == 2 ? 2000 : 0), digits(word, digitsOfYear, 2),
                            digits(word, digitsOfYear + 2, 2));
    const qint64 seconds = timeOfDay(word, time);
    return day < 0 || seconds < 0 ? -1 : day + seconds;
}

// The rest of the line from a word on.
QByteArrayView restFrom(QByteArrayView line, QByteArrayView word) {
    return word.isEmpty() ? QByteArrayView() : line.sliced(word.data() - line.data());
}

double megahertz(QByteArrayView word) {
    bool ok = false;
    const double value = word.toDouble(&ok);
    return ok && value > 0 && value < 1e6 ? value : 0;
}

} // namespace

AllTxtReader::AllTxtReader(QObject *parent) : QObject(parent) {}

AllTxtReader::~AllTxtReader() = default;

void AllTxtReader::setOwnStation(const QString &call, const QString &locator) {
    ownCall_ = call.trimmed().toUpper();
    ownLocator_ = Report_Locator(locator.trimmed());
}

void AllTxtReader::reset() {
    partial_.clear();
    skipping_ = false;
    headerDialMhz_ = 0;
    headerMode_.clear();
    headerDay_ = -1;
    grids_.clear();
}

void AllTxtReader::receive(QByteArrayView bytes) {
    qsizetype start = 0;
    for (qsizetype end = bytes.indexOf('\n'); end >= 0; end = bytes.indexOf('\n', start)) {
        const QByteArrayView piece = bytes.sliced(start, end - start);
        start = end + 1;
        if (skipping_) {
            skipping_ = false;
        } else if (partial_.isEmpty()) {
            readLine(piece);
        } else {
            partial_.append(piece);
            readLine(partial_);
            partial_.clear();
        }
    }
    if (!skipping_) {
        partial_.append(bytes.sliced(start));
        if (partial_.size() > MaxLineBytes) {
            partial_.clear();
            skipping_ = true;
        }
    }
}

void AllTxtReader::finish() {
    if (!skipping_ && !partial_.isEmpty()) {
        readLine(partial_);
    }
    partial_.clear();
    skipping_ = false;
}

void AllTxtReader::readLine(QByteArrayView line) {
    if (line.size() > MaxLineBytes) {
        return;
    }
    const LineWords words = splitWords(line);
    const QByteArrayView first = words.at(0);
    if (first.size() == 13 && (words.at(2) == "Rx" || words.at(2) == "Tx")) {
        // WSJT-X 2.x: stamp, dial, Rx/Tx, mode, snr, dt, audio Hz, message.
        const qint64 seconds = stamp(first, 2);
        if (seconds >= 0 && words.at(2) == "Rx") {
            readDecode(seconds, megahertz(words.at(1)), modeOf(words.at(3)), words.at(4),
                       words.at(6), restFrom(line, words.at(7)));
        }
    } else if (first.size() >= 13 && first.size() <= 15 && words.at(0)[8] == '_') {
        // JTDX: a band header (stamp, dial, "MHz", mode) or a decode
        // (stamp, snr, dt, audio Hz, mode mark, message, flag).
        const qint64 seconds = stamp(first, 4);
        if (seconds < 0) {
            return;
        }
        if (words.at(2) == "MHz") {
            headerDialMhz_ = megahertz(words.at(1));
            headerMode_ = QString::fromLatin1(words.at(3));
            return;
        }
        const QByteArrayView message = restFrom(line, words.at(5));
        const bool lowConfidence =
            message.size() > JtdxMessageWidth &&
            (message[JtdxMessageWidth] == '*' || message[JtdxMessageWidth] == '^');
        if (words.at(4).size() == 1 && !lowConfidence) {
            readDecode(seconds, headerDialMhz_, headerMode_, words.at(1), words.at(3),
                       message.first(std::min(message.size(), JtdxMessageWidth)));
        }
    } else if (first.size() == 10 && first[4] == '-' && first[7] == '-' && words.at(3) == "MHz") {
        // WSJT-X 1.x band header: date, time, dial, "MHz", mode.
        headerDay_ = dayStart(digits(first, 0, 4), digits(first, 5, 2), digits(first, 8, 2));
        headerDialMhz_ = megahertz(words.at(2));
        headerMode_ = QString::fromLatin1(words.at(4));
    } else if ((first.size() == 6 || first.size() == 4) && headerDay_ >= 0) {
        // WSJT-X 1.x decode: time, snr, dt, audio Hz, mode mark, message.
        const qint64 seconds = timeOfDay(first, 0);
        if (seconds >= 0 && words.at(4).size() == 1) {
            readDecode(headerDay_ + seconds, headerDialMhz_, headerMode_, words.at(1), words.at(3),
                       restFrom(line, words.at(5)));
        }
    }
}

void AllTxtReader::readDecode(qint64 seconds, double dialMhz, const QString &mode,
                              QByteArrayView snr, QByteArrayView audioHz, QByteArrayView message) {
    bool snrOk = false;
    bool audioOk = false;
    const int snrValue = snr.toInt(&snrOk);
    const int audio = audioHz.toInt(&audioOk);
    if (!snrOk || !audioOk || dialMhz <= 0 || ownLocator_.isEmpty() ||
        (message.size() > WsjtxMarkAt && message[WsjtxMarkAt] == '?')) {
        return;
    }
    Reception report;
    report.source = ReportSource::AllTxt;
    if (!readTransmitter(report, message, grids_)) {
        return;
    }
    report.time = QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC);
    report.frequencyMhz = dialMhz + audio / 1e6;
    report.mode = mode;
    report.snr = snrValue;
    report.rx = ReportStation{ownCall_, ownLocator_};
    report.atOwnStation = true;
    report.received = report.time;
    Evaluate_Reception(report, ownLocator_);
    Q_EMIT reception(report);
}

const QString &AllTxtReader::modeOf(QByteArrayView word) {
    if (word != modeWord_) {
        modeWord_ = word.toByteArray();
        mode_ = QString::fromLatin1(word);
    }
    return mode_;
}

} // namespace zkr
