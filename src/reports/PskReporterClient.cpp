#include "PskReporterClient.h"

#include "RetryDelay.h"

#include <QElapsedTimer>
#include <QHostInfo>
#include <QPointer>
#include <QRandomGenerator>
#include <QSocketNotifier>
#include <QTimer>

#include <mosquitto.h>

#include <algorithm>

#if defined(Q_OS_UNIX)
#include <sys/ioctl.h>
#endif

namespace zkr {

namespace {

void initLibrary() {
    // Once per process; it only sets up the library's own globals.
    [[maybe_unused]] static const int rc = mosquitto_lib_init();
}

QString libraryText(const char *text) {
    return QString::fromLocal8Bit(text);
}

// Bytes waiting on the socket: whether another read can go on in this turn.
int pendingBytes(int socket) {
    int bytes = 0;
#if defined(Q_OS_UNIX)
    if (::ioctl(socket, FIONREAD, &bytes) != 0) {
        bytes = 0;
    }
#else
    Q_UNUSED(socket);
#endif
    return bytes;
}

} // namespace

void PskReporterClient::MosquittoDeleter::operator()(mosquitto *handle) const {
    mosquitto_destroy(handle);
}

PskReporterClient::PskReporterClient(QObject *parent)
    : QObject(parent), retryTimer_(new QTimer(this)), tickTimer_(new QTimer(this)),
      connectTimer_(new QTimer(this)), housekeepingTimer_(new QTimer(this)) {
    initLibrary();
    retryTimer_->setSingleShot(true);
    connectTimer_->setSingleShot(true);
    tickTimer_->setInterval(1000);
    housekeepingTimer_->setInterval(1000);
    connect(retryTimer_, &QTimer::timeout, this, &PskReporterClient::connectNow);
    connect(tickTimer_, &QTimer::timeout, this, [this] { setState(State::Waiting); });
    connect(connectTimer_, &QTimer::timeout, this, [this] {
        failed(QStringLiteral("no answer from the broker within %1 s")
                   .arg((options_.connectTimeoutMs + 999) / 1000));
    });
    connect(housekeepingTimer_, &QTimer::timeout, this, &PskReporterClient::onHousekeeping);
}

PskReporterClient::~PskReporterClient() {
    if (handle_) {
        mosquitto_disconnect(handle_.get());
    }
    closeConnection();
}

void PskReporterClient::start(const QString &host, quint16 port, const QStringList &bands,
                              const QString &ownCall, const QString &ownLocator, bool allReports) {
    closeConnection();
    retryTimer_->stop();
    tickTimer_->stop();
    host_ = host.trimmed();
    port_ = port;
    topics_ = pskReporterTopics(bands);
    intake_ = PskReporterIntake(ownCall, ownLocator, allReports);
    attempt_ = 0;
    lastError_.clear();
    if (host_.isEmpty() || port_ == 0) {
        lastError_ = QStringLiteral("no broker set");
    } else if (topics_.isEmpty()) {
        lastError_ = QStringLiteral("no band selected");
    }
    if (!lastError_.isEmpty()) {
        housekeepingTimer_->stop();
        setState(State::Idle);
        return;
    }
    housekeepingTimer_->start();
    connectNow();
}

void PskReporterClient::stop() {
    if (handle_) {
        // A polite goodbye when the socket takes it at once; never waited for.
        mosquitto_disconnect(handle_.get());
    }
    closeConnection();
    retryTimer_->stop();
    tickTimer_->stop();
    housekeepingTimer_->stop();
    attempt_ = 0;
    lastError_.clear();
    setState(State::Idle);
}

QString PskReporterClient::statusText() const {
    const QString prefix = QStringLiteral("PSK Reporter: ");
    const QString endpoint = host_ + QLatin1Char(':') + QString::number(port_);
    switch (state_) {
    case State::Idle:
        return prefix + (lastError_.isEmpty() ? QStringLiteral("off") : lastError_);
    case State::Connecting:
        return prefix + QStringLiteral("connecting to ") + endpoint;
    case State::Connected:
        return prefix + QStringLiteral("connected to %1, subscribing").arg(endpoint);
    case State::Subscribed: {
        const bool all = topics_.size() == 1 && topics_.front().endsWith(u'#');
        const QString bands = all ? QStringLiteral("all bands")
                              : topics_.size() == 1
                                  ? QStringLiteral("1 band")
                                  : QStringLiteral("%1 bands").arg(topics_.size());
        return prefix + QStringLiteral("subscribed to %1 at %2").arg(bands, endpoint);
    }
    case State::Waiting: {
        const auto seconds = (std::max<qint64>(retryTimer_->remainingTime(), 0) + 999) / 1000;
        return prefix + QStringLiteral("%1; reconnecting in %2 s (attempt %3)")
                            .arg(lastError_)
                            .arg(seconds)
                            .arg(attempt_);
    }
    }
    return QString();
}

void PskReporterClient::connectNow() {
    retryTimer_->stop();
    tickTimer_->stop();
    closeConnection();
    setState(State::Connecting);
    connectTimer_->start(options_.connectTimeoutMs);
    QHostAddress literal;
    if (literal.setAddress(host_)) {
        openConnection(literal);
        return;
    }
    // The lookup runs on Qt's own threads; its answer comes back here, or
    // never when this object is gone first.
    const quint64 generation = generation_;
    QHostInfo::lookupHost(host_, this, [this, generation](const QHostInfo &info) {
        if (generation != generation_) {
            return; // an attempt that timed out or was stopped
        }
        QList<QHostAddress> addresses = info.addresses();
        if (info.error() != QHostInfo::NoError || addresses.isEmpty()) {
            failed(info.errorString());
            return;
        }
        // IPv4 first: many homes have an IPv6 address but no IPv6 route.
        // Each retry takes the next address.
        std::stable_partition(addresses.begin(), addresses.end(), [](const QHostAddress &a) {
            return a.protocol() == QAbstractSocket::IPv4Protocol;
        });
        openConnection(addresses.at(attempt_ % addresses.size()));
    });
}

void PskReporterClient::openConnection(const QHostAddress &address) {
    // A new client per connection, under an identity the library makes up:
    // the feed keeps no session, and a dead connection is simply thrown away.
    handle_.reset(mosquitto_new(nullptr, true, this));
    if (!handle_) {
        failed(QStringLiteral("out of memory"));
        return;
    }
    mosquitto_connect_callback_set(handle_.get(), &PskReporterClient::onConnectCallback);
    mosquitto_subscribe_callback_set(handle_.get(), &PskReporterClient::onSubscribeCallback);
    mosquitto_message_callback_set(handle_.get(), &PskReporterClient::onMessageCallback);
    mosquitto_disconnect_callback_set(handle_.get(), &PskReporterClient::onDisconnectCallback);
    // An address, so libmosquitto's own lookup returns at once; the socket
    // connects in the background and the write notifier sees it done.
    const int rc = mosquitto_connect_async(handle_.get(), address.toString().toUtf8().constData(),
                                           port_, options_.keepAliveS);
    afterLibraryCall(rc);
}

void PskReporterClient::onReadable() {
    if (!handle_) {
        return;
    }
    // One packet per call; more while the socket holds more and the turn's
    // budget lasts. The notifier fires again for the rest.
    QElapsedTimer clock;
    clock.start();
    do {
        if (!afterLibraryCall(mosquitto_loop_read(handle_.get(), 1))) {
            return;
        }
    } while (pendingBytes(notifiedSocket_) > 0 && clock.elapsed() < ReadBudgetMs);
}

void PskReporterClient::onWritable() {
    if (!handle_) {
        return;
    }
    afterLibraryCall(mosquitto_loop_write(handle_.get(), 1));
}

void PskReporterClient::onHousekeeping() {
    // Keep-alive pings, and noticing a broker that stopped answering them.
    if (handle_ && notifiedSocket_ >= 0) {
        afterLibraryCall(mosquitto_loop_misc(handle_.get()));
    }
}

bool PskReporterClient::afterLibraryCall(int rc) {
    Events events = std::exchange(events_, Events{});
    const QPointer<PskReporterClient> alive(this);
    const quint64 generation = generation_;
    // What arrived before a drop still counts.
    for (const Reception &report : events.receptions) {
        Q_EMIT reception(report);
        if (!alive || generation != generation_) {
            return false; // a receiver stopped or restarted the feed
        }
    }
    if (events.connack) {
        if (*events.connack != 0) {
            failed(libraryText(mosquitto_connack_string(*events.connack)));
            return false;
        }
        setState(State::Connected);
        if (!alive || generation != generation_) {
            return false;
        }
        std::vector<QByteArray> topics;
        std::vector<char *> pointers;
        for (const QString &topic : std::as_const(topics_)) {
            topics.push_back(topic.toUtf8());
        }
        for (QByteArray &topic : topics) {
            pointers.push_back(topic.data());
        }
        rc = mosquitto_subscribe_multiple(handle_.get(), nullptr, static_cast<int>(pointers.size()),
                                          pointers.data(), 0, 0, nullptr);
    }
    if (events.subscriptionRefused) {
        failed(QStringLiteral("the broker refused the subscription"));
        return false;
    }
    if (events.subscribed) {
        // Only a broker that lets us listen counts as a success: one that
        // accepts and hangs up at once is still retried ever more slowly.
        connectTimer_->stop();
        attempt_ = 0;
        setState(State::Subscribed);
    }
    if (events.lost) {
        failed(*events.lost);
        return false;
    }
    if (rc != MOSQ_ERR_SUCCESS) {
        failed(libraryText(mosquitto_strerror(rc)));
        return false;
    }
    syncNotifiers();
    return notifiedSocket_ >= 0;
}

void PskReporterClient::failed(const QString &reason) {
    if (state_ == State::Idle || state_ == State::Waiting) {
        return;
    }
    closeConnection();
    lastError_ = reason;
    ++attempt_;
    const RetryPolicy policy{options_.firstRetryMs, options_.maxRetryMs};
    retryTimer_->start(policy.delayMs(attempt_, QRandomGenerator::global()->generateDouble()));
    tickTimer_->start();
    setState(State::Waiting);
}

void PskReporterClient::closeConnection() {
    ++generation_;
    connectTimer_->stop();
    // Not deleted here: this may run inside a notifier's own signal.
    for (QSocketNotifier *notifier : {readNotifier_, writeNotifier_}) {
        if (notifier) {
            notifier->setEnabled(false);
            notifier->deleteLater();
        }
    }
    readNotifier_ = writeNotifier_ = nullptr;
    notifiedSocket_ = -1;
    // Closes the socket; libmosquitto calls nothing back from here.
    handle_.reset();
    events_ = Events{};
}

void PskReporterClient::syncNotifiers() {
    const int socket = handle_ ? mosquitto_socket(handle_.get()) : -1;
    if (socket != notifiedSocket_) {
        for (QSocketNotifier *notifier : {readNotifier_, writeNotifier_}) {
            if (notifier) {
                notifier->setEnabled(false);
                notifier->deleteLater();
            }
        }
        readNotifier_ = writeNotifier_ = nullptr;
        notifiedSocket_ = socket;
        if (socket >= 0) {
            readNotifier_ = new QSocketNotifier(socket, QSocketNotifier::Read, this);
            writeNotifier_ = new QSocketNotifier(socket, QSocketNotifier::Write, this);
            connect(readNotifier_, &QSocketNotifier::activated, this, [this] { onReadable(); });
            connect(writeNotifier_, &QSocketNotifier::activated, this, [this] { onWritable(); });
        }
    }
    if (writeNotifier_) {
        writeNotifier_->setEnabled(mosquitto_want_write(handle_.get()));
    }
}

void PskReporterClient::setState(State state) {
    state_ = state;
    Q_EMIT statusChanged(statusText());
}

// The callbacks run only inside our calls into libmosquitto, on this
// thread. They note what happened; afterLibraryCall() acts on it, so that
// no receiver of ours runs while the library is in the middle of a step.

void PskReporterClient::onConnectCallback(mosquitto *, void *self, int rc) {
    static_cast<PskReporterClient *>(self)->events_.connack = rc;
}

void PskReporterClient::onSubscribeCallback(mosquitto *, void *self, int, int count,
                                            const int *granted) {
    auto &events = static_cast<PskReporterClient *>(self)->events_;
    // 0x80: the broker refused that topic.
    events.subscriptionRefused =
        std::any_of(granted, granted + count, [](int qos) { return qos > 2; });
    events.subscribed = !events.subscriptionRefused;
}

void PskReporterClient::onMessageCallback(mosquitto *, void *self,
                                          const mosquitto_message *message) {
    auto *client = static_cast<PskReporterClient *>(self);
    const QByteArrayView payload(static_cast<const char *>(message->payload), message->payloadlen);
    if (std::optional<Reception> report =
            client->intake_.take(payload, QDateTime::currentDateTimeUtc())) {
        client->events_.receptions.push_back(std::move(*report));
    }
}

void PskReporterClient::onDisconnectCallback(mosquitto *, void *self, int rc) {
    // errno still belongs to the failure here.
    static_cast<PskReporterClient *>(self)->events_.lost =
        rc == MOSQ_ERR_SUCCESS ? QStringLiteral("the broker closed the connection")
                               : libraryText(mosquitto_strerror(rc));
}

} // namespace zkr
