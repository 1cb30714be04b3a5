#include "LocalHttpServer.h"

#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

LocalHttpServer::LocalHttpServer(QObject *parent) : QObject(parent), server_(new QTcpServer(this)) {
    server_->listen(QHostAddress::LocalHost, 0);
    connect(server_, &QTcpServer::newConnection, this, &LocalHttpServer::onNewConnection);
}

QString LocalHttpServer::url(const QString &path) const {
    return QStringLiteral("http://127.0.0.1:%1%2").arg(server_->serverPort()).arg(path);
}

void LocalHttpServer::onNewConnection() {
    while (QTcpSocket *socket = server_->nextPendingConnection()) {
        socket->setParent(this);
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] { onReadyRead(socket); });
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    }
}

void LocalHttpServer::onReadyRead(QTcpSocket *socket) {
    const QByteArray buffer = socket->property("request").toByteArray() + socket->readAll();
    const qsizetype end = buffer.indexOf("\r\n\r\n");
    if (end < 0) {
        socket->setProperty("request", buffer);
        return;
    }
    socket->setProperty("request", QByteArray());
    const QList<QByteArray> lines = buffer.left(end).split('\n');
    const QList<QByteArray> requestLine = lines.value(0).trimmed().split(' ');
    const QString path = QString::fromLatin1(requestLine.value(1));
    for (const QByteArray &line : lines) {
        if (line.toLower().startsWith("user-agent:")) {
            lastUserAgent_ = line.mid(11).trimmed();
        }
    }
    counts_[path] += 1;
    const Response response =
        responses_.value(path, Response{404, "<html><body>not found</body></html>"});
    if (response.neverAnswer) {
        return;
    }
    QByteArray head = "HTTP/1.1 " + QByteArray::number(response.status) + " Status\r\n";
    head += "Content-Type: " + response.contentType + "\r\n";
    head += "Content-Length: " + QByteArray::number(response.body.size()) + "\r\n";
    head += "Connection: close\r\n\r\n";
    socket->write(head);
    if (response.trickleMs > 0) {
        trickle(socket, response.body, response.trickleMs);
        return;
    }
    socket->write(response.body);
    socket->disconnectFromHost();
}

void LocalHttpServer::trickle(QTcpSocket *socket, const QByteArray &rest, int gapMs) {
    if (rest.isEmpty()) {
        socket->disconnectFromHost();
        return;
    }
    socket->write(rest.left(1));
    socket->flush();
    QPointer<QTcpSocket> guarded(socket);
    QTimer::singleShot(gapMs, this, [this, guarded, rest, gapMs] {
        if (guarded) {
            trickle(guarded, rest.mid(1), gapMs);
        }
    });
}
