#pragma once

#include "Reception.h"

#include <QDataStream>
#include <QIODevice>
#include <QTime>

#include <array>

namespace zkr::test {

// A datagram as WSJT-X writes it (its NetworkMessage.hpp): QDataStream in
// the Qt 5.4 format, magic, schema 3, type and Id, then the fields; texts
// as utf8 byte arrays.
struct Datagram {
    QByteArray bytes;

    Datagram(quint32 type, const char *id) { *this << 0xadbccbdau << 3u << type << id; }
    template <typename T> Datagram &operator<<(const T &value) {
        QDataStream out(&bytes, QIODevice::WriteOnly | QIODevice::Append);
        out.setVersion(QDataStream::Qt_5_4);
        out << value;
        return *this;
    }
    Datagram &operator<<(const char *text) { return *this << QByteArray(text); }
    operator QByteArray() const { return bytes; }
};

// WSJT-X 2.6's Status up to the own call and grid; `tail` 2 adds the rest
// of WSJT-X's fields, 1 JTDX's, which end with its "Tx first" flag.
inline QByteArray status(const char *id, quint64 dialHz, const char *call, const char *grid,
                         int tail = 2) {
    const char *none = "";
    Datagram d = Datagram(1, id) << dialHz << "FT8" << none << none << "FT8" << false << false
                                 << false << 1500u << 1500u << call << grid;
    if (tail > 0) {
        d << none << false << none << false << quint8(1);
    }
    return tail > 1 ? d << ~0u << ~0u << "Default" << none : d;
}

// A decode; `flags` are WSJT-X's new, low confidence and off air, in that order.
inline QByteArray decode(const char *id, QTime time, qint32 snr, quint32 audioHz,
                         const char *message, std::array<bool, 3> flags = {true, false, false}) {
    return Datagram(2, id) << flags[0] << time << snr << 0.2 << audioHz << "~" << message
                           << flags[1] << flags[2];
}

// "EA7ABC IM76 > DL9OWN JO40 50.314234 FT8 -12 2023-06-12 18:30:15 1915km"
inline QString describe(const Reception &r) {
    const int km = r.es && r.atOwnStation ? qRound(r.es->pathKm) : -1;
    return QString("%1 %2 > %3 %4 %5 %6 %7 %8 %9km")
        .arg(r.tx.call, r.tx.locator, r.rx.call, r.rx.locator,
             QString::number(r.frequencyMhz, 'f', 6), r.mode, QString::number(r.snr.value_or(99)),
             r.time.toString("yyyy-MM-dd hh:mm:ss"), QString::number(km));
}

} // namespace zkr::test
