#pragma once

#include "ClusterFeed.h"
#include "PageDecoding.h"

#include <QAbstractSocket>
#include <QObject>
#include <QString>
#include <QStringList>

class QTcpSocket;
class QTimer;

namespace zkr {

// One telnet cluster connection that keeps itself up: it connects, logs in
// with the own call when the node asks, hands everything received to its
// feed, and after a drop, a refusal or a failed name lookup connects again
// by itself, first within a few seconds, then waiting twice as long each
// time (with jitter) up to a limit. A link that died silently (a NAT that
// forgot us) is noticed by TCP keep-alive, which the node never sees as
// text. Writes are paced by a timer; nothing here blocks.
class ClusterSession : public QObject {
    Q_OBJECT
public:
    struct Options {
        int firstRetryMs = 3000; // wait before the first retry (jitter added, at most 5 s)
        int maxRetryMs = 300000; // longest wait between retries
        int connectTimeoutMs = 15000;
        int keepAliveIdleS = 60; // silence before the first probe
        int keepAliveIntervalS = 20;
        int keepAliveCount = 5; // unanswered probes before the link counts as dead
        int writeGapMs = 100;   // pause between two queued writes
    };

    // Most bytes handed on per turn of the event loop.
    static constexpr qint64 ReadSliceBytes = 16 * 1024;

    enum class State { Idle, Connecting, Connected, LoggedIn, Waiting };
    Q_ENUM(State)

    explicit ClusterSession(QObject *parent = nullptr);
    ~ClusterSession() override;

    void setOptions(const Options &options) { options_ = options; }
    const Options &options() const { return options_; }

    // Connects to the node and keeps connecting until stop(). `name` is the
    // node's label in status texts ("GB7DJK").
    void start(const QString &name, const QString &host, quint16 port, const QString &ownCall);
    // Closes the connection; no retry follows.
    void stop();
    // While waiting for a retry (or connecting): connect again at once.
    void retryNow();
    // Queues text for the node (Latin-1). Returns false when not connected;
    // nothing is queued then.
    bool send(const QString &text);

    State state() const { return state_; }
    // Whether the session is open, opening or waiting to reopen for this
    // login at this node.
    bool isActiveFor(const QString &host, quint16 port, const QString &ownCall) const {
        return state_ != State::Idle && host_ == host && port_ == port && ownCall_ == ownCall;
    }
    // Failed attempts since the last successful connection.
    int attempt() const { return attempt_; }
    // Seconds until the next retry while waiting.
    int secondsToRetry() const;
    // What the status shows, e.g. " Connected to GB7DJK host:7300" or
    // "Reconnecting in 20 s (attempt 3) to GB7DJK": what changes first, so
    // that a narrow status still shows it. A node without a name is named
    // by host and port.
    QString statusText() const;

    ClusterFeed &feed() { return feed_; }
    QTcpSocket &socket() { return *socket_; }

Q_SIGNALS:
    // The state or its status text changed (also every second while waiting).
    void statusChanged(zkr::ClusterSession::State state, const QString &text);
    // An attempt failed: refused, not found, timed out, or the link dropped.
    void attemptFailed(const QString &reason);
    // Bytes as they arrived, for the console's record (its replay must see
    // what the feed saw).
    void bytesReceived(const QByteArray &bytes);
    // The same decoded for the console, line by line as the feed reads
    // them; a character cut between two reads comes whole with the second.
    void textReceived(const QString &text);

private:
    void connectNow();
    void onConnected();
    void onReadyRead();
    void onDropped(const QString &reason);
    void scheduleRetry();
    void writeNext();
    void setState(State state);
    void applyKeepAlive();

    Options options_;
    QTcpSocket *socket_;
    QTimer *retryTimer_;
    QTimer *tickTimer_;
    QTimer *connectTimer_;
    QTimer *writeTimer_;
    ClusterFeed feed_;
    StreamDecoder consoleText_;
    QString name_;
    QString host_;
    quint16 port_ = 0;
    QString ownCall_;
    State state_ = State::Idle;
    int attempt_ = 0;
    int nextDelayMs_ = 0;
    bool readQueued_ = false;
    QList<QByteArray> writeQueue_;
};

} // namespace zkr
