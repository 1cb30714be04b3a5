#pragma once

#include <QByteArrayView>
#include <QHash>
#include <QString>

#include <algorithm>
#include <optional>

namespace zkr {

struct Reception;

// The first words of a line of text, split at blanks and control
// characters, as views into it; the rest is never looked at.
struct LineWords {
    static constexpr int Max = 8;
    QByteArrayView word[Max];
    int count = 0;

    QByteArrayView at(int i) const { return i < count ? word[i] : QByteArrayView(); }
};
LineWords splitWords(QByteArrayView text);

// The station that sent a decoded FT8/FT4/... message, as the message names
// it. Views into the message text.
struct MessageSender {
    QByteArrayView call; // without the angle brackets of a hashed call
    QByteArrayView grid; // empty when the message carries none
};

// Reads the sender out of a decoded message: "CQ [modifier] CALL [GRID]"
// (also QRZ and DE), "CALL1 CALL2 [R] [GRID]", the EU VHF contest's
// "CALL1 CALL2 [R] 5nnnnn GRID6", a leading "TU;" and the DXpedition's
// "CALL RR73; CALL2 FOX ...". RR73 is no grid; words after the message (AP
// markers, "?", flags) are ignored. Empty when the message names no sender
// (free text, telemetry, an unresolved hash "<...>").
std::optional<MessageSender> messageSender(QByteArrayView message);

// The grids of the calls heard lately, so that a message without a grid
// ("K1ABC W9XYZ RR73") still places its sender. Bounded: two generations of
// at most capacity / 2 calls each; a call not heard for a generation is
// forgotten, so a day of decodes does not grow it.
class HeardGrids {
public:
    explicit HeardGrids(qsizetype capacity = 20000) : half_(std::max<qsizetype>(capacity / 2, 1)) {}

    void remember(const QString &call, const QString &grid);
    // The grid last heard with the call, or "".
    QString find(const QString &call);
    void clear();
    qsizetype size() const { return recent_.size() + older_.size(); }

private:
    QHash<QString, QString> recent_;
    QHash<QString, QString> older_;
    qsizetype half_;
};

// Sets the report's transmitter from a decoded message: its sender's call
// and grid (remembered), or the grid heard with that call before. False when
// the message names no sender or no grid is known for it: such a report
// places nothing and is not passed on.
bool readTransmitter(Reception &report, QByteArrayView message, HeardGrids &grids);

} // namespace zkr
