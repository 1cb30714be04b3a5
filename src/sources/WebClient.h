#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QString>

class QNetworkAccessManager;
class QNetworkReply;
class QTimer;

namespace zkr {

// Fetches web pages (the spot list, the update check) without blocking:
// fetch() returns at once and fetched() or failed() follows. An attempt
// that gets no answer is retried within a deadline; a download that is slow
// but still moving is never cut off, only one that falls silent.
class WebClient : public QObject {
    Q_OBJECT
public:
    struct Options {
        int attempts = 11;            // tries while no server answers
        int retryWindowMs = 15000;    // no new try starts after this
        int connectTimeoutMs = 10000; // until the server answers at all
        int silenceTimeoutMs = 10000; // longest pause within an answer
        int retryGapMs = 1000;        // pause before a new try (a refusal comes back at once)
    };

    explicit WebClient(QObject *parent = nullptr);
    WebClient(Options options, QObject *parent);

    void setOptions(Options options) { options_ = options; }

    // Starts fetching `url`. Returns false, and does nothing, while a fetch
    // is under way: one fetch at a time.
    bool fetch(const QString &url);
    bool isBusy() const { return reply_ != nullptr || retrying_; }

    bool lastUrlOpened() const { return lastOpened_; }
    int lastError() const { return lastError_; }

Q_SIGNALS:
    // "trying to connect", "connected", "requesting".
    void progress(const QString &caption);
    // A server answered (any status: the spot service's error pages are
    // recognised by their text). The body is decoded.
    void fetched(const QString &body);
    // No server answered in any attempt; `error` is the last failure code.
    void failed(int error);

private:
    void startAttempt();
    void onFinished();

    Options options_;
    QNetworkAccessManager *manager_;
    QNetworkReply *reply_ = nullptr;
    QTimer *silence_;
    QString url_;
    int attemptsMade_ = 0;
    QElapsedTimer clock_;   // since fetch(): the retry window
    bool retrying_ = false; // a retry waits its turn
    bool timedOut_ = false; // the running attempt was cut by a timeout
    bool lastOpened_ = false;
    int lastError_ = 0;
};

} // namespace zkr
