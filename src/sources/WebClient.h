#pragma once

#include <QObject>
#include <QString>

#include <functional>

class QNetworkAccessManager;

namespace zkr {

// Fetches web pages for the spot list and the update check over one shared
// network manager. A fetch blocks its caller but lets window, timer and
// network events run meanwhile, as the program always did; a timeout on
// every attempt and on the whole fetch keeps a silent server from holding
// the program.
class WebClient : public QObject {
    Q_OBJECT
public:
    struct Options {
        int attempts = 11;
        int attemptTimeoutMs = 10000;
        int totalTimeoutMs = 15000;
    };

    explicit WebClient(QObject *parent = nullptr);
    WebClient(Options options, QObject *parent);

    void setOptions(Options options) { options_ = options; }

    // Progress captions ("trying to connect", "connected", "requesting"),
    // shown on the main window's work label.
    void setCaptionHandler(std::function<void(const QString &)> handler) {
        caption_ = std::move(handler);
    }

    // Called once when every attempt failed, with the last failure code:
    // the program warns the user and marks the source offline.
    void setFailureHandler(std::function<void(int)> handler) { failure_ = std::move(handler); }

    // The whole response body, or "" when no server answered. A server that
    // answered with an error status still counts as answered: its page is
    // returned (the spot service's error pages are recognised by text).
    QString Open_Url(const QString &url);

    // Whether the last Open_Url reached a server, and the last failure code.
    bool lastUrlOpened() const { return lastOpened_; }
    int lastError() const { return lastError_; }

private:
    void showCaption(const QString &caption);

    Options options_;
    QNetworkAccessManager *manager_;
    std::function<void(const QString &)> caption_;
    std::function<void(int)> failure_;
    bool lastOpened_ = false;
    int lastError_ = 0;
};

} // namespace zkr
