#include "TelnetSession.h"

#include "Int16Arithmetic.h"
#include "Platform.h"
#include "ProgramState.h"
#include "ReceiveHost.h"
#include "RunTimeError.h"
#include "SessionView.h"
#include "TelnetReceive.h"

#include <QTimer>

namespace zkr {

namespace {

constexpr std::uint32_t White = 0xFFFFFF;
constexpr std::uint32_t Red = 0x0000FF;
constexpr std::uint32_t Green = 0x00FF00;

const QString ConnectError = QStringLiteral(
    "Telnet_Error, can't connect. Make sure host and port are correct or even if host exists. "
    "Check firewall settings and your Call in setup.");

QString trying(const ProgramState &s) {
    return QStringLiteral(" trying to connect to ") + s.Telnet_Call + QLatin1Char(' ') +
           s.Telnet_Host + QLatin1Char(':') + s.Telnet_Port;
}

} // namespace

TelnetSession::TelnetSession(ProgramState &state, Platform &platform, SessionView &view,
                             QObject *parent)
    : QObject(parent), state_(state), platform_(platform), view_(view) {
    connect(&socket_, &QTcpSocket::connected, this, &TelnetSession::Winsock_connect);
    connect(&socket_, &QTcpSocket::readyRead, this, &TelnetSession::Winsock_dataArrival);
    connect(&socket_, &QTcpSocket::disconnected, this, &TelnetSession::Winsock_Close);
    connect(&socket_, &QTcpSocket::errorOccurred, this, &TelnetSession::Winsock_Error);
    connect(&socket_, &QTcpSocket::bytesWritten, this, &TelnetSession::Winsock_SendComplete);
}

TelnetSession::~TelnetSession() {
    QObject::disconnect(&socket_, nullptr, this, nullptr);
    socket_.abort();
}

void TelnetSession::Telnet_Connect() {
    socket_.abort();
    bool ok = false;
    const int port = state_.Telnet_Port.trimmed().toInt(&ok);
    if (!ok || port < 0 || port > 65535) {
        // A port that is no number cannot even be set on the socket.
        showConnectError();
        return;
    }
    socket_.connectToHost(state_.Telnet_Host, static_cast<quint16>(port));
    view_.prepareConsole(state_.Telnet_Host, state_.Telnet_Port, state_.OwnCall);
    view_.setStatusLabel(trying(state_), White);
    platform_.processEvents();
}

void TelnetSession::showConnectError() {
    platform_.beep(800, 200);
    platform_.armBoxPlacement(std::nullopt);
    platform_.messageBox(ConnectError, MsgButtons::Information, QStringLiteral("Attention!"));
}

void TelnetSession::Winsock_connect() {
    state_.Telnet_Connected = true;
    view_.setConsoleState(QStringLiteral(" Connected"), Green);
    // The status tells "Connected to" only once the cluster's prompt came.
    view_.setStatusLabel(trying(state_), White);
}

void TelnetSession::Winsock_Close() {
    state_.Telnet_Connected = false;
    view_.setConsoleState(QStringLiteral("not connected"), Red);
    view_.setStatusLabel(
        QStringLiteral(" Not connected !") +
            QStringLiteral(" Click to Check Setup or check your firewall settings !"),
        Red);
    platform_.processEvents();
}

void TelnetSession::Winsock_Error(QAbstractSocket::SocketError error) {
    if (error == QAbstractSocket::RemoteHostClosedError) {
        // The cluster hung up: that is a close, reported by disconnected().
        return;
    }
    Winsock_Close();
    showConnectError();
}

void TelnetSession::Winsock_SendComplete() {
    platform_.sleep(100);
}

bool TelnetSession::sendData(const QString &text) {
    if (socket_.state() != QAbstractSocket::ConnectedState) {
        return false;
    }
    socket_.write(text.toLatin1());
    return true;
}

void TelnetSession::record(const QString &chunk) {
    if (state_.Console_Lines.isEmpty()) {
        state_.Console_Lines.append(QString());
    }
    if (state_.Console_LineCount >= ConsoleRecordLimit ||
        recordChars_ + chunk.size() > ConsoleRecordChars) {
        // Drop the oldest chunks until a tenth of both limits is free, so the
        // record costs the same per chunk in a run of any length and stays
        // small however large the chunks; element 0 stays empty.
        int drop = 0;
        qsizetype freed = 0;
        while (drop < state_.Console_LineCount &&
               (state_.Console_LineCount - drop > ConsoleRecordLimit * 9 / 10 ||
                recordChars_ - freed + chunk.size() > ConsoleRecordChars * 9 / 10)) {
            freed += state_.Console_Lines.at(1 + drop).size();
            ++drop;
        }
        state_.Console_Lines.remove(1, drop);
        state_.Console_LineCount = static_cast<std::int16_t>(state_.Console_LineCount - drop);
        recordChars_ -= freed;
    }
    state_.Console_LineCount = add16(state_.Console_LineCount, 1);
    state_.Console_Lines.resize(state_.Console_LineCount + 1);
    state_.Console_Lines[state_.Console_LineCount] = chunk;
    recordChars_ += chunk.size();
}

void TelnetSession::Winsock_dataArrival() {
    state_.Spot_Frequency = 0;
    state_.Spot_Mode.clear();
    if (state_.Busy) {
        // Text stays in the socket while an evaluation runs.
        queueRecheck();
        return;
    }
    if (socket_.bytesAvailable() == 0) {
        return;
    }
    state_.Telnet_RxData = QString::fromLatin1(socket_.readAll());
    state_.Telnet_Text = state_.Telnet_RxData;
    view_.appendConsole(state_.Telnet_Text);
    record(state_.Telnet_Text);
    if (receiveHost_ != nullptr) {
        try {
            Telnet_Receive(state_, *receiveHost_);
        } catch (const RunTimeError &error) {
            reportRunTimeError(platform_, error);
        }
    }
    // The socket announces no text that came in while this chunk was being
    // evaluated; look for it now instead of waiting for the next arrival.
    if (socket_.bytesAvailable() > 0) {
        queueRecheck();
    }
}

void TelnetSession::queueRecheck() {
    if (recheckQueued_) {
        return;
    }
    recheckQueued_ = true;
    QTimer::singleShot(state_.Busy ? 50 : 0, this, [this] {
        recheckQueued_ = false;
        if (socket_.bytesAvailable() > 0) {
            Winsock_dataArrival();
        }
    });
}

} // namespace zkr
