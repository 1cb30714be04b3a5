#pragma once

#include "Reception.h"
#include "WsjtxDecoder.h"
#include "WsjtxSettings.h"

#include <QObject>
#include <QString>

class QTimer;
class QUdpSocket;

namespace zkr {

// Listens for the UDP messages of WSJT-X and JTDX on the address and port of
// the settings, or on a multicast group shared with other programs, and
// passes on each decode as a reception report (see WsjtxDecoder). Never
// blocks: a port taken by another program is said once in the status and
// tried again every retryInterval() in the background.
class WsjtxListener : public QObject {
    Q_OBJECT
public:
    explicit WsjtxListener(QObject *parent = nullptr);
    ~WsjtxListener() override;

    void setOwnStation(const QString &call, const QString &locator);

    // Stops, then listens with these settings (nothing when they are
    // disabled). statusChanged() tells how it went.
    void start(const WsjtxSettings &settings);
    void stop();
    bool isListening() const;
    // The bound port: the settings' port, or the one chosen for port 0.
    quint16 localPort() const;
    const WsjtxDecoder &decoder() const { return decoder_; }

    int retryInterval() const;
    void setRetryInterval(int milliseconds);

Q_SIGNALS:
    void reception(const zkr::Reception &report);
    // One line for the status bar, plain text.
    void statusChanged(const QString &text);

private:
    void listen();
    void readDatagrams();

    WsjtxSettings settings_;
    WsjtxDecoder decoder_;
    QUdpSocket *socket_;
    QTimer *retry_;
    bool toldBusy_ = false;
};

} // namespace zkr
