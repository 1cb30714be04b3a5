#pragma once

#include <QObject>
#include <QTcpSocket>

namespace zkr {

struct ProgramState;
class Platform;
class ReceiveHost;
class SessionView;

// The telnet cluster session: plain TCP, single-byte text both ways. Each
// arrival goes through the receive processor as one chunk; while an
// evaluation runs (Busy) arriving text waits in the socket and is fetched
// as one chunk as soon as the evaluation is over.
class TelnetSession : public QObject {
    Q_OBJECT
public:
    // Most chunks the console record keeps; the oldest go first.
    static constexpr int ConsoleRecordLimit = 20000;
    // Most characters the console record keeps (chunks can be large).
    static constexpr qsizetype ConsoleRecordChars = 4 * 1024 * 1024;

    TelnetSession(ProgramState &state, Platform &platform, SessionView &view,
                  QObject *parent = nullptr);
    // Closing the socket on the way out must not report to a view that may
    // be gone already.
    ~TelnetSession() override;

    void setReceiveHost(ReceiveHost *host) { receiveHost_ = host; }

    // (Re)connects to Telnet_Host:Telnet_Port.
    void Telnet_Connect();
    // Sends text as single bytes; returns false when no session is open
    // (nothing is sent then).
    bool sendData(const QString &text);
    // The "not connected" handling: state, console and status label.
    void Winsock_Close();
    // Fetches and processes what waits in the socket, unless Busy.
    void Winsock_dataArrival();

    QTcpSocket &socket() { return socket_; }

private:
    void Winsock_connect();
    void Winsock_Error(QAbstractSocket::SocketError error);
    void Winsock_SendComplete();
    void showConnectError();
    void record(const QString &chunk);
    void queueRecheck();

    ProgramState &state_;
    Platform &platform_;
    SessionView &view_;
    ReceiveHost *receiveHost_ = nullptr;
    QTcpSocket socket_;
    bool recheckQueued_ = false;
    qsizetype recordChars_ = 0; // characters in Console_Lines
};

} // namespace zkr
