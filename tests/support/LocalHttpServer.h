#pragma once

#include <QByteArray>
#include <QHash>
#include <QObject>
#include <QString>

class QTcpServer;
class QTcpSocket;

// A small HTTP/1.1 server on 127.0.0.1 and a free port, for tests only.
// Each path answers as configured; every request is counted.
class LocalHttpServer : public QObject {
    Q_OBJECT
public:
    struct Response {
        int status = 200;
        QByteArray body;
        QByteArray contentType = "text/html; charset=iso-8859-1";
        bool neverAnswer = false; // accept, read, then stay silent
        int trickleMs = 0;        // send the body a byte at a time, this far apart
    };

    explicit LocalHttpServer(QObject *parent = nullptr);

    void setResponse(const QString &path, const Response &response) { responses_[path] = response; }
    // http://127.0.0.1:PORT + path
    QString url(const QString &path) const;
    int requestCount(const QString &path) const { return counts_.value(path); }
    QByteArray lastUserAgent() const { return lastUserAgent_; }

private:
    void onNewConnection();
    void onReadyRead(QTcpSocket *socket);
    void trickle(QTcpSocket *socket, const QByteArray &rest, int gapMs);

    QTcpServer *server_;
    QHash<QString, Response> responses_;
    QHash<QString, int> counts_;
    QByteArray lastUserAgent_;
};
