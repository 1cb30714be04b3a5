#pragma once

#include "DecodedMessage.h"
#include "Reception.h"

#include <QByteArray>
#include <QObject>
#include <QString>

class QIODevice;

namespace zkr {

// Turns the decode log of WSJT-X and JTDX (ALL.TXT) into reception reports
// of the own station, a piece of the byte stream at a time. Layouts:
//   WSJT-X 2.x  "230612_183015    50.313 Rx FT8    -12  0.2 1234 CQ EA7ABC IM76"
//               (Tx lines and a dial of 0.000, which means unknown, are skipped)
//   JTDX        "20230612_183015  50.313 MHz  FT8" gives the dial for the
//               decodes after it, "20230612_183015 -12  0.2 1234 ~ CQ EA7ABC IM76  *"
//   WSJT-X 1.x  "2018-05-30 18:30  50.313 MHz  FT8", then "183015 -12  0.2 1234 ~  CQ ..."
// Anything else is skipped. Low-confidence decodes ("?" of WSJT-X, "*" and
// "^" of JTDX) are skipped as the live decoder skips them. Both `time` and
// `received` are the log's time, so that a replay gives what the live
// program gave.
class AllTxtReader : public QObject {
    Q_OBJECT
public:
    explicit AllTxtReader(QObject *parent = nullptr);
    ~AllTxtReader() override;

    // The receiver of every decode and the station the paths are for.
    void setOwnStation(const QString &call, const QString &locator);

    // A new log: forgets the band header, a line begun and the grids heard.
    void reset();
    // Any piece of the log; a line cut between pieces is read when its end
    // arrives.
    void receive(QByteArrayView bytes);
    // The end of the log: reads a last line without a line end.
    void finish();


Q_SIGNALS:
    void reception(const zkr::Reception &report);

private:
    void readLine(QByteArrayView line);
    void readDecode(qint64 seconds, double dialMhz, const QString &mode, QByteArrayView snr,
                    QByteArrayView audioHz, QByteArrayView message);
    const QString &modeOf(QByteArrayView word);

    QByteArray partial_;
    bool skipping_ = false; // inside a line too long to be a log line
    // The band header of JTDX and WSJT-X 1.x.
    double headerDialMhz_ = 0;
    QString headerMode_;
    qint64 headerDay_ = -1; // 1.x: midnight of the header's date, seconds
    QByteArray modeWord_;   // the mode of the last WSJT-X 2.x line, kept to reuse its text
    QString mode_;
    HeardGrids grids_;
    QString ownCall_;
    QString ownLocator_;
};

} // namespace zkr
