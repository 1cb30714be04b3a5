#pragma once

#include "Reception.h"

#include <QByteArray>
#include <QDataStream>
#include <QIODevice>
#include <QTime>

#include <limits>

namespace zkr::test {

// A datagram as WSJT-X writes it (its NetworkMessage.hpp): QDataStream in
// the Qt 5.4 format, magic, schema, type and Id, then the fields; texts as
// utf8 byte arrays.
class Datagram {
public:
    Datagram(quint32 type, const char *id, quint32 schema = 3) {
        *this << quint32(0xadbccbda) << schema << type << QByteArray(id);
    }
    template <typename T> Datagram &operator<<(const T &value) {
        QDataStream out(&bytes_, QIODevice::WriteOnly | QIODevice::Append);
        out.setVersion(QDataStream::Qt_5_4);
        out << value;
        return *this;
    }
    Datagram &operator<<(const char *text) { return *this << QByteArray(text); }
    operator QByteArray() const { return bytes_; }

private:
    QByteArray bytes_;
};

constexpr quint32 None32 = std::numeric_limits<quint32>::max();

// WSJT-X 2.6's Status up to the own call and grid.
inline Datagram statusStart(const char *id, quint64 dialHz, const char *call, const char *grid) {
    return Datagram(1, id) << dialHz << "FT8"
                           << ""
                           << ""
                           << "FT8" << false << false << false << quint32(1500) << quint32(1500)
                           << call << grid;
}

// All of WSJT-X 2.6's Status.
inline QByteArray status(const char *id, quint64 dialHz, const char *call, const char *grid) {
    return statusStart(id, dialHz, call, grid)
           << "" << false << "" << false << quint8(0) << None32 << None32 << "Default"
           << "";
}

// JTDX's Status: the same start, ending with its "Tx first" flag.
inline QByteArray jtdxStatus(const char *id, quint64 dialHz, const char *call, const char *grid) {
    return statusStart(id, dialHz, call, grid) << "" << false << "" << false << true;
}

inline QByteArray decode(const char *id, QTime time, qint32 snr, quint32 audioHz,
                         const char *message, bool isNew = true, bool lowConfidence = false,
                         bool offAir = false) {
    return Datagram(2, id) << isNew << time << snr << 0.2 << audioHz << "~" << message
                           << lowConfidence << offAir;
}

// "EA7ABC IM76 > DL9OWN JO40 50.314234 FT8 -12 2023-06-12 18:30:15 1766km",
// with "?" before it for a report not flagged as the own station's.
inline QString describe(const Reception &r) {
    return QString(r.atOwnStation ? "" : "?") +
           QString("%1 %2 > %3 %4 %5 %6 %7 %8 %9km")
               .arg(r.tx.call, r.tx.locator, r.rx.call, r.rx.locator)
               .arg(r.frequencyMhz, 0, 'f', 6)
               .arg(r.mode)
               .arg(r.snr.value_or(99))
               .arg(r.time.toString("yyyy-MM-dd hh:mm:ss"))
               .arg(r.es ? qRound(r.es->pathKm) : -1);
}

} // namespace zkr::test
