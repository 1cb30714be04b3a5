#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QObject>
#include <QString>
#include <QStringList>

namespace zkr {

// Turns what a cluster sends, in pieces of any size, into lines, and lines
// into what they mean: spots, the prompt, a login request. The same bytes
// give the same lines however they were cut, so a file replay and a live
// session of the same text look alike.
//
// - Lines end at CR LF, LF or CR; a line cut by a read is completed by the
//   next one.
// - Pairs of BEL characters are removed from every line.
// - Telnet option negotiation is refused (telnetReply) and never shown;
//   a doubled 0xFF is one 0xFF character.
// - Text is single-byte (Latin-1).
class ClusterFeed : public QObject {
    Q_OBJECT
public:
    // Non-spot lines kept for the next prompt block, at most.
    static constexpr int MaxBlockLines = 200;

    explicit ClusterFeed(QObject *parent = nullptr);

    // A new connection: the half-received line, the kept lines and the
    // login are forgotten.
    void reset();
    void receive(QByteArrayView bytes);
    // End of input (end of a file): an unterminated last line counts.
    void finish();

    // Whether the login was answered, or the node showed that it needs none
    // (a prompt or a spot came).
    bool loggedIn() const { return loggedIn_; }

Q_SIGNALS:
    // A complete "DX de " line, without its line end. Whether it is a spot
    // at all (a frequency above 0) is the evaluation's to decide.
    void spotLine(const QString &line);
    // A line ending in ">" (not closing a "<your name>" placeholder of a
    // welcome text): the prompt, with the non-spot lines that came
    // just before it (the welcome text, a command's answer), as the block
    // shown in the panes: three CR LF, the lines each ended by CR LF, three
    // CR LF.
    void promptBlock(const QString &block);
    // Before login, the text that has arrived ends, unterminated, in
    // "login:", "call:" or "callsign:" (any case): the own call is due.
    void loginRequested();
    // Refusals of telnet options, to be written back to the node.
    void telnetReply(const QByteArray &bytes);
    // Every complete line, for the console.
    void lineReceived(const QString &line);

private:
    void appendPartial(const char *data, qsizetype size);
    void telnetByte(unsigned char c);
    void takeLine();
    void emitLine(const char *data, qsizetype size);
    void handleLine(QString line);

    QByteArray partial_;
    QStringList block_;
    bool afterCr_ = false;
    bool loggedIn_ = false;
    int telnetState_ = 0;
    char telnetVerb_ = 0;
    quint64 generation_ = 0; // counts resets, so a reset by a receiver stops the read
};

} // namespace zkr
