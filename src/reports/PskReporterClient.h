#pragma once

#include "PskReporterPayload.h"
#include "Reception.h"

#include <QHostAddress>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>
#include <vector>

class QSocketNotifier;
class QTimer;
struct mosquitto;
struct mosquitto_message;

namespace zkr {

// PSK Reporter's live feed from an MQTT broker, kept up by itself: it looks
// the broker up, connects, subscribes to the bands' filter topics, turns
// each payload into a reception (see PskReporterIntake) and after a drop, a
// refusal or a failed lookup connects again, waiting as the cluster session
// does (RetryPolicy).
//
// Everything runs on the object's own thread, driven by its event loop:
// Qt looks the name up (QHostInfo, never a blocking getaddrinfo here),
// libmosquitto gets the address and connects without blocking, and
// QSocketNotifiers call its read and write steps when the socket is ready.
// So there is no second thread to hand reports across and nothing to lock,
// and libmosquitto can only call back from inside our own calls into it -
// never after the object is gone. A report costs a few microseconds; a turn
// of the event loop reads at most ReadBudgetMs worth of them, so a flood
// cannot hold the loop.
class PskReporterClient : public QObject {
    Q_OBJECT
public:
    struct Options {
        int connectTimeoutMs = 15000; // from the lookup to the accepted subscription
        int keepAliveS = 60;
        int firstRetryMs = 3000; // wait before the first retry (jitter added, at most 5 s)
        int maxRetryMs = 300000; // longest wait between retries
    };

    // Longest run of reading within one turn of the event loop.
    static constexpr int ReadBudgetMs = 5;

    enum class State { Idle, Connecting, Connected, Subscribed, Waiting };
    Q_ENUM(State)

    explicit PskReporterClient(QObject *parent = nullptr);
    ~PskReporterClient() override;

    void setOptions(const Options &options) { options_ = options; }

    // Connects and keeps connecting until stop(). `bands` are PSK Reporter's
    // band names ("6m", "all"); reports go through a new intake for the own
    // station (see PskReporterIntake), so the counters start again.
    void start(const QString &host, quint16 port, const QStringList &bands, const QString &ownCall,
               const QString &ownLocator, bool allReports);
    // Disconnects; no retry follows and no signal but the status.
    void stop();

    State state() const { return state_; }
    // Failed attempts since the last accepted connection.
    int attempt() const { return attempt_; }
    const QStringList &topics() const { return topics_; }
    const PskReporterCounters &counters() const { return intake_.counters(); }
    // "PSK Reporter: subscribed to 3 bands at host:1883", "PSK Reporter:
    // connection refused; reconnecting in 5 s (attempt 2)", ...
    QString statusText() const;

Q_SIGNALS:
    // One report that passed the intake.
    void reception(const zkr::Reception &report);
    // The state or its status text changed (also every second while waiting).
    void statusChanged(const QString &text);

private:
    struct MosquittoDeleter {
        void operator()(mosquitto *handle) const;
    };

    void connectNow();
    void openConnection(const QHostAddress &address);
    void onReadable();
    void onWritable();
    void onHousekeeping();
    // Runs after every call into libmosquitto: hands on what its callbacks
    // collected and follows the socket it now has.
    // Returns whether the connection is still there to go on with.
    bool afterLibraryCall(int rc);
    void failed(const QString &reason);
    void closeConnection();
    void syncNotifiers();
    void setState(State state);

    static void onConnectCallback(mosquitto *, void *self, int rc);
    static void onSubscribeCallback(mosquitto *, void *self, int mid, int count,
                                    const int *granted);
    static void onMessageCallback(mosquitto *, void *self, const mosquitto_message *message);
    static void onDisconnectCallback(mosquitto *, void *self, int rc);

    Options options_;
    std::unique_ptr<mosquitto, MosquittoDeleter> handle_;
    QSocketNotifier *readNotifier_ = nullptr;
    QSocketNotifier *writeNotifier_ = nullptr;
    int notifiedSocket_ = -1;
    QTimer *retryTimer_;
    QTimer *tickTimer_;
    QTimer *connectTimer_;
    QTimer *housekeepingTimer_;

    QString host_;
    quint16 port_ = 0;
    QStringList topics_;
    PskReporterIntake intake_;
    State state_ = State::Idle;
    int attempt_ = 0;
    // Counts starts, stops and connection attempts: a lookup or a signal
    // receiver that belongs to an older one sees that it is stale.
    quint64 generation_ = 0;
    QString lastError_;

    // What libmosquitto's callbacks reported during the last call into it.
    struct Events {
        std::optional<int> connack;
        bool subscribed = false;
        bool subscriptionRefused = false;
        std::optional<QString> lost; // why the connection was lost
        std::vector<Reception> receptions;
    };
    Events events_;
};

} // namespace zkr
