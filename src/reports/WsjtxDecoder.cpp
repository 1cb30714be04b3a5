#include "WsjtxDecoder.h"

#include "Locators.h"

#include <QtEndian>

#include <algorithm>
#include <bit>

namespace zkr {

namespace {

constexpr quint32 Magic = 0xadbccbda;
constexpr quint32 OldestSchema = 2; // schema 1 used a broken stream format
constexpr quint32 NewestSchema = 3;
constexpr quint32 NullText = 0xffffffff;
constexpr qint64 SecondsPerDay = 24 * 60 * 60;

enum MessageType : quint32 { Status = 1, Decode = 2, Close = 6 };

// The big-endian fields of a datagram, as QDataStream writes them. A field
// is there whole or missing; one that starts but does not end means the
// datagram was cut.
class Fields {
public:
    explicit Fields(QByteArrayView data) : data_(data) {}

    bool cut() const { return cut_; }

    template <typename T> bool number(T &value) {
        if (!take(sizeof(T))) {
            return false;
        }
        value = qFromBigEndian<T>(data_.data() + at_ - sizeof(T));
        return true;
    }
    bool flag(bool &value) {
        quint8 byte = 0;
        const bool ok = number(byte);
        value = byte != 0;
        return ok;
    }
    bool real(double &value) {
        quint64 bits = 0;
        const bool ok = number(bits);
        value = std::bit_cast<double>(bits);
        return ok;
    }
    // utf8: a quint32 size (0xffffffff for a null text), then the bytes.
    bool text(QByteArrayView &value) {
        quint32 size = 0;
        if (!number(size)) {
            return false;
        }
        if (size == NullText) {
            value = {};
            return true;
        }
        if (data_.size() - at_ < static_cast<qint64>(size)) {
            cut_ = true;
            return false;
        }
        value = data_.sliced(at_, size);
        at_ += size;
        return true;
    }

private:
    bool take(qsizetype size) {
        const qsizetype left = data_.size() - at_;
        if (cut_ || left < size) {
            cut_ = cut_ || left > 0;
            return false;
        }
        at_ += size;
        return true;
    }

    QByteArrayView data_;
    qsizetype at_ = 0;
    bool cut_ = false;
};

} // namespace

void WsjtxDecoder::setOwnStation(const QString &call, const QString &locator) {
    ownCall_ = call.trimmed().toUpper();
    ownLocator_ = Report_Locator(locator.trimmed());
}

std::optional<Reception> WsjtxDecoder::decode(QByteArrayView datagram, const QDateTime &now,
                                              QStringView sender) {
    const qint64 nowSeconds = now.toSecsSinceEpoch();
    forgetSilent(nowSeconds);
    Fields in(datagram);
    quint32 magic = 0;
    quint32 schema = 0;
    quint32 type = 0;
    QByteArrayView id;
    if (!in.number(magic) || magic != Magic || !in.number(schema) || schema < OldestSchema ||
        schema > NewestSchema || !in.number(type) || !in.text(id)) {
        ++dropped_;
        return std::nullopt;
    }
    const QString key = sender.toString() + QChar(u'\0') + QString::fromUtf8(id);
    const auto known = instances_.find(key);
    if (known != instances_.end()) {
        known->lastHeard = nowSeconds;
    }
    switch (type) {
    case Status: {
        quint64 dialHz = 0;
        QByteArrayView mode;
        if (!in.number(dialHz) || !in.text(mode)) {
            ++dropped_;
            return std::nullopt;
        }
        // DX call, report, Tx mode, Tx enabled, transmitting, decoding, Rx
        // and Tx audio offset, then the instance's own call and grid. JTDX
        // and older versions end sooner or later; what is missing stays
        // empty.
        QByteArrayView skipped;
        bool skippedFlag = false;
        quint32 skippedOffset = 0;
        QByteArrayView call;
        QByteArrayView grid;
        (void)(in.text(skipped) && in.text(skipped) && in.text(skipped) && in.flag(skippedFlag) &&
               in.flag(skippedFlag) && in.flag(skippedFlag) && in.number(skippedOffset) &&
               in.number(skippedOffset) && in.text(call) && in.text(grid));
        if (in.cut()) {
            ++dropped_;
            return std::nullopt;
        }
        if (known == instances_.end() && instances_.size() >= MaxInstances) {
            instances_.erase(std::min_element(
                instances_.begin(), instances_.end(),
                [](const Instance &a, const Instance &b) { return a.lastHeard < b.lastHeard; }));
        }
        instances_.insert(key,
                          Instance{dialHz, QString::fromUtf8(mode).trimmed(),
                                   QString::fromUtf8(call).trimmed().toUpper(),
                                   Report_Locator(QString::fromUtf8(grid).trimmed()), nowSeconds});
        return std::nullopt;
    }
    case Decode: {
        bool isNew = false;
        quint32 milliseconds = 0;
        qint32 snr = 0;
        double deltaTime = 0;
        quint32 audioHz = 0;
        QByteArrayView mode;
        QByteArrayView message;
        if (!in.flag(isNew) || !in.number(milliseconds) || !in.number(snr) || !in.real(deltaTime) ||
            !in.number(audioHz) || !in.text(mode) || !in.text(message)) {
            ++dropped_;
            return std::nullopt;
        }
        bool lowConfidence = false;
        bool offAir = false;
        (void)(in.flag(lowConfidence) && in.flag(offAir));
        if (in.cut()) {
            ++dropped_;
            return std::nullopt;
        }
        if (known == instances_.end() || !isNew || lowConfidence || offAir) {
            return std::nullopt;
        }
        const Instance &instance = *known;
        Reception report;
        report.source = ReportSource::Wsjtx;
        // The decode carries its time of day only (QTime, null as
        // 0xffffffff): on today's date, or yesterday's for a decode of the
        // last period before midnight that arrives after it.
        qint64 seconds = nowSeconds;
        if (milliseconds < SecondsPerDay * 1000) {
            seconds = nowSeconds - nowSeconds % SecondsPerDay + milliseconds / 1000;
            if (seconds > nowSeconds + 60 * 60) {
                seconds -= SecondsPerDay;
            }
        }
        report.time = QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC);
        report.frequencyMhz = static_cast<double>(instance.dialHz + audioHz) / 1e6;
        report.mode = instance.mode.isEmpty() ? QString::fromUtf8(mode) : instance.mode;
        report.snr = snr;
        if (!readTransmitter(report, message, grids_)) {
            return std::nullopt;
        }
        report.rx = instance.locator.isEmpty()
                        ? ReportStation{ownCall_, ownLocator_}
                        : ReportStation{instance.call.isEmpty() ? ownCall_ : instance.call,
                                        instance.locator};
        if (report.rx.locator.isEmpty()) {
            return std::nullopt;
        }
        report.atOwnStation = true;
        report.received = now;
        Evaluate_Reception(report, ownLocator_.isEmpty() ? report.rx.locator : ownLocator_);
        return report;
    }
    case Close:
        instances_.remove(key);
        return std::nullopt;
    default:
        // Heartbeat and the rest; unknown types are ignored.
        return std::nullopt;
    }
}

void WsjtxDecoder::forgetSilent(qint64 now) {
    instances_.removeIf(
        [now](const auto &entry) { return now - entry.value().lastHeard > SilentSeconds; });
}

} // namespace zkr
