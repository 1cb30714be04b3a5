#include "WsjtxListener.h"

#include <QNetworkDatagram>
#include <QNetworkInterface>
#include <QTimer>
#include <QUdpSocket>

namespace zkr {

WsjtxListener::WsjtxListener(QObject *parent)
    : QObject(parent), socket_(new QUdpSocket(this)), retry_(new QTimer(this)) {
    retry_->setSingleShot(true);
    retry_->setInterval(15000);
    connect(retry_, &QTimer::timeout, this, &WsjtxListener::listen);
    connect(socket_, &QUdpSocket::readyRead, this, &WsjtxListener::readDatagrams);
}

WsjtxListener::~WsjtxListener() = default;

void WsjtxListener::setOwnStation(const QString &call, const QString &locator) {
    decoder_.setOwnStation(call, locator);
}

void WsjtxListener::start(const WsjtxSettings &settings) {
    stop();
    settings_ = settings;
    toldBusy_ = false;
    if (settings_.enabled) {
        listen();
    }
}

void WsjtxListener::stop() {
    retry_->stop();
    socket_->abort();
}

bool WsjtxListener::isListening() const {
    return socket_->state() == QAbstractSocket::BoundState;
}

quint16 WsjtxListener::localPort() const {
    return socket_->localPort();
}

int WsjtxListener::retryInterval() const {
    return retry_->interval();
}

void WsjtxListener::setRetryInterval(int milliseconds) {
    retry_->setInterval(milliseconds);
}

void WsjtxListener::listen() {
    const QString &groupText = settings_.multicastGroup;
    const QHostAddress group(groupText);
    if (!groupText.isEmpty() && !group.isMulticast()) {
        Q_EMIT statusChanged(QStringLiteral("WSJT-X: %1 is no multicast group").arg(groupText));
        return;
    }
    // The decodes of a group are shared with other programs; a plain port
    // is ours alone, so that a second listener is told rather than left to
    // take half of the datagrams.
    const QHostAddress address =
        groupText.isEmpty() ? QHostAddress(settings_.address) : QHostAddress(QHostAddress::AnyIPv4);
    if (address.isNull()) {
        Q_EMIT statusChanged(QStringLiteral("WSJT-X: %1 is no IP address").arg(settings_.address));
        return;
    }
    const auto mode = groupText.isEmpty()
                          ? QAbstractSocket::BindMode(QAbstractSocket::DontShareAddress)
                          : QAbstractSocket::ShareAddress | QAbstractSocket::ReuseAddressHint;
    if (!socket_->bind(address, settings_.port, mode)) {
        if (socket_->error() != QAbstractSocket::AddressInUseError) {
            Q_EMIT statusChanged(QStringLiteral("WSJT-X: cannot listen on %1 port %2: %3")
                                     .arg(address.toString())
                                     .arg(settings_.port)
                                     .arg(socket_->errorString()));
            return;
        }
        if (!toldBusy_) {
            toldBusy_ = true;
            Q_EMIT statusChanged(
                QStringLiteral("WSJT-X: UDP port %1 is in use by another program. To share "
                               "the decodes, set a multicast group (such as 239.255.0.1) "
                               "in WSJT-X and in this program.")
                    .arg(settings_.port));
        }
        retry_->start();
        return;
    }
    if (groupText.isEmpty()) {
        Q_EMIT statusChanged(QStringLiteral("WSJT-X: listening on %1 port %2")
                                 .arg(address.toString())
                                 .arg(socket_->localPort()));
        return;
    }
    // WSJT-X sends to the group on the interfaces chosen in its settings
    // (the loopback one unless told otherwise): join on every one that is
    // up. The loopback interface often does not say it can multicast, yet
    // it does.
    bool joined = false;
    for (const QNetworkInterface &net : QNetworkInterface::allInterfaces()) {
        const auto flags = net.flags();
        if (flags.testFlag(QNetworkInterface::IsUp) &&
            (flags & (QNetworkInterface::CanMulticast | QNetworkInterface::IsLoopBack)) &&
            socket_->joinMulticastGroup(group, net)) {
            joined = true;
        }
    }
    if (!joined) {
        Q_EMIT statusChanged(QStringLiteral("WSJT-X: cannot join the multicast group %1: %2")
                                 .arg(groupText, socket_->errorString()));
        return;
    }
    Q_EMIT statusChanged(QStringLiteral("WSJT-X: listening on multicast group %1 port %2")
                             .arg(groupText)
                             .arg(socket_->localPort()));
}

void WsjtxListener::readDatagrams() {
    while (socket_->hasPendingDatagrams()) {
        const QNetworkDatagram datagram = socket_->receiveDatagram();
        if (auto report = decoder_.decode(datagram.data(), QDateTime::currentDateTimeUtc(),
                                          datagram.senderAddress().toString())) {
            Q_EMIT reception(*report);
        }
    }
}

} // namespace zkr
