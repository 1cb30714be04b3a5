#pragma once

#include "DecodedMessage.h"
#include "Reception.h"

#include <QByteArrayView>
#include <QDateTime>
#include <QHash>
#include <QString>

#include <optional>

namespace zkr {

// Reads the UDP messages of WSJT-X and JTDX (QDataStream, magic 0xadbccbda,
// schema 2 and 3). A Status gives an instance's dial frequency, mode, call
// and grid; a Decode heard by that instance becomes a reception report at
// the dial plus the audio offset, with the transmitter the message names.
// Instances are told apart by sender and Id; an instance's state goes when
// it sends Close or has been silent for SilentSeconds.
//
// As the protocol asks: unknown message types are ignored, fields missing
// at the end are taken as absent and fields after the known ones are
// skipped. Datagrams that are not WSJT-X messages, of another schema, or cut
// inside a field that is needed are dropped and counted.
//
// Left out on purpose: decodes not flagged new (replays of the band
// activity, asked for by another program), decodes played back from a file
// (off air) and low-confidence decodes, which may well be false.
class WsjtxDecoder {
public:
    static constexpr qint64 SilentSeconds = 5 * 60;
    static constexpr qsizetype MaxInstances = 32;

    // The own station: the receiver of an instance whose Status carries no
    // grid, and the station the Es paths are computed for.
    void setOwnStation(const QString &call, const QString &locator);

    // One datagram from `sender` (its address; any text telling senders
    // apart), received at `now` (UTC). A reception report when it was a
    // usable decode: `received` is `now`, `time` the decode's time of day
    // on the date that puts it at or before `now`.
    std::optional<Reception> decode(QByteArrayView datagram, const QDateTime &now,
                                    QStringView sender = {});

    qint64 droppedDatagrams() const { return dropped_; }
    qsizetype instanceCount() const { return instances_.size(); }

private:
    struct Instance {
        quint64 dialHz = 0;
        QString mode;
        QString call;
        QString locator; // "" when the Status had no usable grid
        qint64 lastHeard = 0;
    };

    void forgetSilent(qint64 now);

    QHash<QString, Instance> instances_;
    HeardGrids grids_;
    QString ownCall_;
    QString ownLocator_;
    qint64 dropped_ = 0;
};

} // namespace zkr
