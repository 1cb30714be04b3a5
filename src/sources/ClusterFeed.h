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
// - Each line is read as UTF-8 when it is valid UTF-8, else as Windows-1252.
// - A spot right after a login request on the same line (the request is
//   never terminated, and a node may send a spot at once after the login)
//   starts a line of its own.
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
    // A complete "DX de " line, without its line end; a line holding more
    // records glued together (no line end between them) is split before
    // each further "DX de ". Whether it is a spot at all (a frequency above
    // 0) is the evaluation's to decide. `utf8`: the line came as UTF-8, so
    // its columns (padded by the node in bytes) count each character's
    // UTF-8 bytes; otherwise each character is one byte.
    void spotLine(const QString &line, bool utf8);
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
    void handleLine(QByteArrayView bytes);
    void emitSpots(QByteArrayView bytes, QString line, bool utf8);

    QByteArray partial_;
    QStringList block_;
    bool afterCr_ = false;
    bool loggedIn_ = false;
    int telnetState_ = 0;
    char telnetVerb_ = 0;
    quint64 generation_ = 0; // counts resets, so a reset by a receiver stops the read
};

} // namespace zkr
