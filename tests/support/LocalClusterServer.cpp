#include "LocalClusterServer.h"

#include <QDir>
#include <QFile>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

LocalClusterServer::LocalClusterServer(quint16 port, QObject *parent)
    : QObject(parent), server_(new QTcpServer(this)) {
    server_->listen(QHostAddress::LocalHost, port);
    connect(server_, &QTcpServer::newConnection, this, &LocalClusterServer::onNewConnection);
}

quint16 LocalClusterServer::port() const {
    return server_->serverPort();
}

QByteArray LocalClusterServer::prompt(const QString &call) {
    return call.toLatin1() + " de GB7TST 21-Nov-2026 1712Z dxspider >\r\n";
}

bool LocalClusterServer::writeSettings(const QString &folder, quint16 port) {
    const QByteArray settings =
        "[Version]\r\nVersion=1.30\r\n[Call]\r\nOwnCall=DL1ABC\r\n[Locator]\r\n"
        "OwnLocator=JO62QM\r\n[Telnet]\r\nTelnet_Call=GB7TST\r\nTelnet_Host=127.0.0.1\r\n"
        "Telnet_Port=" +
        QByteArray::number(port) + "\r\n[AutoUpdateCheck]\r\nUpdateCheck=off\r\n";
    QFile ini(QDir(folder).filePath(QStringLiteral("zkr_muf.ini")));
    return ini.open(QIODevice::WriteOnly) && ini.write(settings) == settings.size();
}

void LocalClusterServer::onNewConnection() {
    while (QTcpSocket *socket = server_->nextPendingConnection()) {
        socket->setParent(this);
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] { onReadyRead(socket); });
        socket->write("Welcome to the test node\r\n\r\nlogin: ");
    }
}

void LocalClusterServer::onReadyRead(QTcpSocket *socket) {
    const QByteArray data = socket->readAll();
    if (socket->property("call").isNull()) {
        const QByteArray line = socket->property("pending").toByteArray() + data;
        const qsizetype end = line.indexOf("\r\n");
        if (end < 0) {
            socket->setProperty("pending", line);
            return;
        }
        const QString call = QString::fromLatin1(line.left(end)).trimmed();
        socket->setProperty("call", call);
        logins_.append(call);
        clients_.append(socket);
        socket->write(greeting.isEmpty() ? "Hello " + call.toLatin1() +
                                               ", this is GB7TST in Test Town\r\n" + prompt(call)
                                         : greeting);
        return;
    }
    received_ += data;
}

void LocalClusterServer::send(const QByteArray &bytes) {
    for (const QPointer<QTcpSocket> &client : clients_) {
        if (client) {
            client->write(bytes);
            client->flush();
        }
    }
}

void LocalClusterServer::sendInPieces(const QByteArray &bytes, const QList<int> &sizes, int gapMs) {
    if (bytes.isEmpty()) {
        return;
    }
    const qsizetype size = sizes.isEmpty() ? bytes.size() : sizes.first();
    for (const QPointer<QTcpSocket> &client : std::as_const(clients_)) {
        if (client) {
            client->setSocketOption(QAbstractSocket::LowDelayOption, 1);
            client->write(bytes.left(size));
            client->flush();
        }
    }
    const QByteArray rest = bytes.mid(size);
    if (rest.isEmpty()) {
        return;
    }
    // The next piece goes out an event-loop turn later at the earliest, so
    // that the client can read this one by itself.
    QList<int> turned = sizes;
    turned.append(turned.takeFirst());
    ++piecesPending_;
    QTimer::singleShot(gapMs, this, [this, rest, turned, gapMs] {
        --piecesPending_;
        sendInPieces(rest, turned, gapMs);
    });
}

void LocalClusterServer::closeClients() {
    for (const QPointer<QTcpSocket> &client : clients_) {
        if (client) {
            client->disconnectFromHost();
        }
    }
    clients_.clear();
}

bool LocalClusterServer::socketIdle() const {
    for (const QPointer<QTcpSocket> &client : clients_) {
        if (client && client->bytesToWrite() > 0) {
            return false;
        }
    }
    return true;
}
