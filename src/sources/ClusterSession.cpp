#include "ClusterSession.h"

#include "RetryDelay.h"

#include <QRandomGenerator>
#include <QSignalBlocker>
#include <QTcpSocket>
#include <QTimer>

#include <algorithm>
#include <cmath>

#if defined(Q_OS_UNIX)
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#endif

namespace zkr {

namespace {

QString endpoint(const QString &name, const QString &host, quint16 port) {
    const QString address = host + QLatin1Char(':') + QString::number(port);
    return name.isEmpty() ? address : name + QLatin1Char(' ') + address;
}

} // namespace

ClusterSession::ClusterSession(QObject *parent)
    : QObject(parent), socket_(new QTcpSocket(this)), retryTimer_(new QTimer(this)),
      tickTimer_(new QTimer(this)), connectTimer_(new QTimer(this)), writeTimer_(new QTimer(this)) {
    retryTimer_->setSingleShot(true);
    connectTimer_->setSingleShot(true);
    writeTimer_->setSingleShot(true);
    tickTimer_->setInterval(1000);
    connect(retryTimer_, &QTimer::timeout, this, &ClusterSession::connectNow);
    connect(tickTimer_, &QTimer::timeout, this, [this] { setState(State::Waiting); });
    connect(connectTimer_, &QTimer::timeout, this, [this] {
        onDropped(QStringLiteral("no connection within %1 s")
                      .arg(std::ceil(options_.connectTimeoutMs / 1000.0)));
    });
    connect(writeTimer_, &QTimer::timeout, this, &ClusterSession::writeNext);

    connect(socket_, &QTcpSocket::connected, this, &ClusterSession::onConnected);
    // Past this the node waits (TCP flow control) instead of our memory growing.
    socket_->setReadBufferSize(1024 * 1024);
    connect(socket_, &QTcpSocket::readyRead, this, &ClusterSession::onReadyRead);
    connect(socket_, &QTcpSocket::disconnected, this,
            [this] { onDropped(QStringLiteral("the node closed the connection")); });
    connect(socket_, &QTcpSocket::errorOccurred, this,
            [this](QAbstractSocket::SocketError) { onDropped(socket_->errorString()); });

    connect(&feed_, &ClusterFeed::telnetReply, this, [this](const QByteArray &reply) {
        // Refusals go out at once: the node may wait for them.
        if (socket_->state() == QAbstractSocket::ConnectedState) {
            socket_->write(reply);
        }
    });
    connect(&feed_, &ClusterFeed::loginRequested, this,
            [this] { send(ownCall_ + QStringLiteral("\r\n")); });
    connect(&feed_, &ClusterFeed::promptBlock, this, [this] {
        if (state_ == State::Connected) {
            // Only a node that let us in counts as a success: one that
            // accepts and hangs up at once is still retried ever more slowly.
            attempt_ = 0;
            setState(State::LoggedIn);
        }
    });
}

ClusterSession::~ClusterSession() {
    const QSignalBlocker blocker(socket_);
    socket_->abort();
}

void ClusterSession::start(const QString &name, const QString &host, quint16 port,
                           const QString &ownCall) {
    name_ = name;
    host_ = host;
    port_ = port;
    ownCall_ = ownCall;
    attempt_ = 0;
    connectNow();
}

void ClusterSession::stop() {
    retryTimer_->stop();
    tickTimer_->stop();
    connectTimer_->stop();
    writeTimer_->stop();
    writeQueue_.clear();
    {
        const QSignalBlocker blocker(socket_);
        socket_->abort();
    }
    attempt_ = 0;
    setState(State::Idle);
}

void ClusterSession::retryNow() {
    if (state_ == State::Waiting || state_ == State::Connecting) {
        connectNow();
    }
}

bool ClusterSession::send(const QString &text) {
    if (state_ != State::Connected && state_ != State::LoggedIn) {
        return false;
    }
    writeQueue_.append(text.toLatin1());
    if (!writeTimer_->isActive()) {
        writeNext();
    }
    return true;
}

int ClusterSession::secondsToRetry() const {
    if (state_ != State::Waiting) {
        return 0;
    }
    return static_cast<int>((retryTimer_->remainingTime() + 999) / 1000);
}

QString ClusterSession::statusText() const {
    switch (state_) {
    case State::Idle:
        return QStringLiteral(" Not connected !");
    case State::Connecting:
    case State::Connected:
        return QStringLiteral(" trying to connect to ") + endpoint(name_, host_, port_);
    case State::LoggedIn:
        return QStringLiteral(" Connected to ") + endpoint(name_, host_, port_);
    case State::Waiting:
        return QStringLiteral("Reconnecting in %1 s (attempt %2) to %3")
            .arg(secondsToRetry())
            .arg(attempt_)
            .arg(name_.isEmpty() ? endpoint(name_, host_, port_) : name_);
    }
    return QString();
}

void ClusterSession::connectNow() {
    retryTimer_->stop();
    tickTimer_->stop();
    writeTimer_->stop();
    writeQueue_.clear();
    {
        const QSignalBlocker blocker(socket_);
        socket_->abort();
    }
    feed_.reset();
    consoleText_.reset();
    setState(State::Connecting);
    connectTimer_->start(options_.connectTimeoutMs);
    socket_->connectToHost(host_, port_);
}

void ClusterSession::onConnected() {
    connectTimer_->stop();
    applyKeepAlive();
    setState(State::Connected);
}

void ClusterSession::onReadyRead() {
    // A slice at a time: a flood that piled up must not hold the event loop
    // for the whole pile. The rest is read on the next turn of the loop.
    const QByteArray bytes = socket_->read(ReadSliceBytes);
    if (bytes.isEmpty()) {
        return;
    }
    Q_EMIT bytesReceived(bytes);
    Q_EMIT textReceived(consoleText_.decode(bytes));
    feed_.receive(bytes);
    if (socket_->bytesAvailable() > 0 && !readQueued_) {
        readQueued_ = true;
        QTimer::singleShot(0, this, [this] {
            readQueued_ = false;
            onReadyRead();
        });
    }
}

void ClusterSession::onDropped(const QString &reason) {
    if (state_ == State::Idle || state_ == State::Waiting) {
        return; // the second report of the same drop, or one after stop()
    }
    // What arrived just before the close still counts.
    while (socket_->bytesAvailable() > 0) {
        onReadyRead();
    }
    connectTimer_->stop();
    writeTimer_->stop();
    writeQueue_.clear();
    {
        const QSignalBlocker blocker(socket_);
        socket_->abort();
    }
    ++attempt_;
    // Waiting before the report, so that a receiver sees the retry coming.
    scheduleRetry();
    Q_EMIT attemptFailed(reason);
}

void ClusterSession::scheduleRetry() {
    const RetryPolicy policy{options_.firstRetryMs, options_.maxRetryMs};
    nextDelayMs_ = policy.delayMs(attempt_, QRandomGenerator::global()->generateDouble());
    retryTimer_->start(nextDelayMs_);
    tickTimer_->start();
    setState(State::Waiting);
}

void ClusterSession::writeNext() {
    if (writeQueue_.isEmpty() || socket_->state() != QAbstractSocket::ConnectedState) {
        return;
    }
    socket_->write(writeQueue_.takeFirst());
    // The next write waits its gap even if nothing is queued yet.
    writeTimer_->start(options_.writeGapMs);
}

void ClusterSession::setState(State state) {
    state_ = state;
    Q_EMIT statusChanged(state_, statusText());
}

void ClusterSession::applyKeepAlive() {
    socket_->setSocketOption(QAbstractSocket::KeepAliveOption, 1);
#if defined(Q_OS_UNIX)
    const auto fd = static_cast<int>(socket_->socketDescriptor());
    if (fd < 0) {
        return;
    }
    const auto set = [fd](int level, int name, int value) {
        ::setsockopt(fd, level, name, &value, sizeof value);
    };
    set(SOL_SOCKET, SO_KEEPALIVE, 1);
#if defined(TCP_KEEPIDLE)
    set(IPPROTO_TCP, TCP_KEEPIDLE, options_.keepAliveIdleS);
#endif
    set(IPPROTO_TCP, TCP_KEEPINTVL, options_.keepAliveIntervalS);
    set(IPPROTO_TCP, TCP_KEEPCNT, options_.keepAliveCount);
#if defined(TCP_USER_TIMEOUT)
    // Data the node never acknowledges (our login or a command on a dead
    // link) gives up after the same time as the probes.
    set(IPPROTO_TCP, TCP_USER_TIMEOUT,
        1000 * (options_.keepAliveIdleS + options_.keepAliveIntervalS * options_.keepAliveCount));
#endif
#endif
}

} // namespace zkr
