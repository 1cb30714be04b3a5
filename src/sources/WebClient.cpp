#include "WebClient.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QStringDecoder>
#include <QTimer>

#include <algorithm>

namespace zkr {

namespace {

QString decodeBody(const QByteArray &body, const QString &contentType) {
    // Pages are read as single-byte text unless they say they are UTF-8.
    if (contentType.contains(QLatin1String("utf-8"), Qt::CaseInsensitive)) {
        return QString::fromUtf8(body);
    }
    return QString::fromLatin1(body);
}

} // namespace

WebClient::WebClient(QObject *parent) : WebClient(Options{}, parent) {}

WebClient::WebClient(Options options, QObject *parent)
    : QObject(parent), options_(options), manager_(new QNetworkAccessManager(this)) {
    manager_->setRedirectPolicy(QNetworkRequest::NoLessSafeRedirectPolicy);
}

void WebClient::showCaption(const QString &caption) {
    if (caption_) {
        caption_(caption);
    }
    QCoreApplication::processEvents();
}

QString WebClient::Open_Url(const QString &url) {
    lastOpened_ = false;
    lastError_ = 0;
    QElapsedTimer clock;
    clock.start();
    for (int attempt = 0; attempt < std::max(options_.attempts, 1); ++attempt) {
        const qint64 left = options_.totalTimeoutMs - clock.elapsed();
        if (attempt > 0 && left <= 0) {
            break;
        }
        showCaption(QStringLiteral("trying to connect"));

        QNetworkRequest request{QUrl(url)};
        request.setHeader(QNetworkRequest::UserAgentHeader, QStringLiteral("VB"));
        request.setAttribute(QNetworkRequest::CacheLoadControlAttribute,
                             QNetworkRequest::AlwaysNetwork);
        request.setMaximumRedirectsAllowed(10);
        QNetworkReply *reply = manager_->get(request);

        QEventLoop loop;
        QTimer timeout;
        timeout.setSingleShot(true);
        connect(&timeout, &QTimer::timeout, reply, &QNetworkReply::abort);
        connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
        timeout.start(static_cast<int>(std::clamp<qint64>(
            std::min<qint64>(options_.attemptTimeoutMs, left), 1, options_.attemptTimeoutMs)));
        if (!reply->isFinished()) {
            loop.exec();
        }
        timeout.stop();

        const QVariant status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
        const bool answered = status.isValid() &&
                              reply->error() != QNetworkReply::OperationCanceledError &&
                              reply->error() != QNetworkReply::TooManyRedirectsError;
        if (answered) {
            lastOpened_ = true;
            showCaption(QStringLiteral("connected"));
            showCaption(QStringLiteral("requesting"));
            const QString body = decodeBody(
                reply->readAll(), reply->header(QNetworkRequest::ContentTypeHeader).toString());
            reply->deleteLater();
            return body;
        }
        lastError_ = static_cast<int>(reply->error());
        reply->deleteLater();
    }
    if (failure_) {
        failure_(lastError_);
    }
    return QString();
}

} // namespace zkr
