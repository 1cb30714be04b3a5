#pragma once

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QStringList>

class QTcpServer;
class QTcpSocket;

// A DX cluster node on 127.0.0.1 and a free port, for tests: it asks
// "login: ", takes the call sign, greets and sends its prompt ending in
// " >" CR LF, as DX Spider nodes do; then the test sends what it likes.
class LocalClusterServer : public QObject {
    Q_OBJECT
public:
    // Listens on a free port, or on the given one (one a test found free), so
    // that a client retrying there finds a node at last.
    explicit LocalClusterServer(quint16 port = 0, QObject *parent = nullptr);

    quint16 port() const;
    // Call signs the clients logged in with, in order.
    const QStringList &logins() const { return logins_; }
    // Everything received after the login, per client.
    QByteArray received() const { return received_; }
    bool hasClient() const { return !clients_.isEmpty(); }
    // Sends raw bytes to every logged-in client as one write.
    void send(const QByteArray &bytes);
    // Sends `bytes` to every logged-in client in pieces of the given sizes
    // (repeated in turn; none: whole), each its own TCP segment, `gapMs`
    // apart and at least an event-loop turn apart.
    void sendInPieces(const QByteArray &bytes, const QList<int> &sizes, int gapMs);
    // Every piece given to sendInPieces is on its way.
    bool piecesSent() const { return piecesPending_ == 0; }
    void closeClients();
    QByteArray greeting; // sent after a login instead of the welcome and prompt when set
    // Nothing written is still waiting to go out.
    bool socketIdle() const;
    // The prompt the node sends after the login.
    static QByteArray prompt(const QString &call);
    // Writes zkr_muf.ini into `folder`: the program in telnet mode (DL1ABC at
    // JO62QM, no update check) using the cluster GB7TST at 127.0.0.1:port.
    static bool writeSettings(const QString &folder, quint16 port);

private:
    void onNewConnection();
    void onReadyRead(QTcpSocket *socket);

    QTcpServer *server_;
    QList<QPointer<QTcpSocket>> clients_;
    QStringList logins_;
    QByteArray received_;
    int piecesPending_ = 0;
};
