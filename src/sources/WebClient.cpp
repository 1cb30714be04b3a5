#include "WebClient.h"

#include "PageDecoding.h"
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>

#include <algorithm>

namespace zkr {

WebClient::WebClient(QObject *parent) : WebClient(Options{}, parent) {}

WebClient::WebClient(Options options, QObject *parent)
    : QObject(parent), options_(options), manager_(new QNetworkAccessManager(this)),
      silence_(new QTimer(this)) {
    manager_->setRedirectPolicy(QNetworkRequest::NoLessSafeRedirectPolicy);
    silence_->setSingleShot(true);
    connect(silence_, &QTimer::timeout, this, [this] {
        if (reply_ != nullptr) {
            timedOut_ = true;
            reply_->abort();
        }
    });
}

bool WebClient::fetch(const QString &url) {
    if (isBusy()) {
        return false;
    }
    url_ = url;
    attemptsMade_ = 0;
    lastOpened_ = false;
    lastError_ = 0;
    clock_.start();
    startAttempt();
    return true;
}

void WebClient::startAttempt() {
    retrying_ = false;
    ++attemptsMade_;
    timedOut_ = false;
    Q_EMIT progress(QStringLiteral("trying to connect"));

    QNetworkRequest request{QUrl(url_)};
    request.setHeader(QNetworkRequest::UserAgentHeader, QStringLiteral("VB"));
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute,
                         QNetworkRequest::AlwaysNetwork);
    request.setMaximumRedirectsAllowed(10);
    reply_ = manager_->get(request);
    // Until the server answers at all the connect timeout runs; from then
    // on every bit of progress restarts the silence timeout, so a download
    // that keeps moving is never cut.
    silence_->start(options_.connectTimeoutMs);
    const auto moving = [this] { silence_->start(options_.silenceTimeoutMs); };
    connect(reply_, &QNetworkReply::requestSent, this, [this] {
        Q_EMIT progress(QStringLiteral("connected"));
        Q_EMIT progress(QStringLiteral("requesting"));
    });
    connect(reply_, &QNetworkReply::metaDataChanged, this, moving);
    connect(reply_, &QNetworkReply::downloadProgress, this, moving);
    connect(reply_, &QNetworkReply::finished, this, &WebClient::onFinished);
}

void WebClient::onFinished() {
    silence_->stop();
    QNetworkReply *reply = std::exchange(reply_, nullptr);
    reply->deleteLater();
    const QVariant status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
    const QNetworkReply::NetworkError error = reply->error();
    // A page cut off by silence is no answer: its end is missing.
    const bool answered = status.isValid() && !timedOut_ &&
                          error != QNetworkReply::OperationCanceledError &&
                          error != QNetworkReply::TooManyRedirectsError;
    if (answered) {
        lastOpened_ = true;
        Q_EMIT fetched(decodeWebPage(reply->readAll(), reply->rawHeader("Content-Type")));
        return;
    }
    lastError_ =
        timedOut_ ? static_cast<int>(QNetworkReply::TimeoutError) : static_cast<int>(error);
    const qint64 elapsed = clock_.elapsed();
    if (attemptsMade_ < std::max(options_.attempts, 1) && elapsed < options_.retryWindowMs) {
        // A refusal comes back at once; a server that is restarting needs a
        // moment, so the tries are spread out a little.
        retrying_ = true;
        QTimer::singleShot(
            std::clamp<qint64>(options_.retryGapMs, 0, options_.retryWindowMs - elapsed), this,
            &WebClient::startAttempt);
        return;
    }
    Q_EMIT failed(lastError_);
}

} // namespace zkr
