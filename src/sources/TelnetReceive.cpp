#include "TelnetReceive.h"

#include "Pane.h"
#include "ProgramState.h"
#include "ReceiveHost.h"
#include "RunTimeError.h"
#include "TextFunctions.h"

namespace zkr {

namespace {

constexpr std::uint32_t Blue = 0xFF0000;
constexpr std::uint32_t Yellow = 0x00FFFF;

// The kHz column of a spot line, in MHz as the float the program keeps.
float lineFrequency(const ProgramState &state, const QString &line, int startOffset) {
    const double kilohertz =
        leadingNumber(trimBlanks(mid(line, state.column(3) + startOffset, state.column(4))));
    return static_cast<float>(kilohertz / 1000.0);
}

// Files an accepted spot line and evaluates it. Failures of one line are
// passed over so that the other lines of the chunk still get their turn.
void acceptLine(ProgramState &state, ReceiveHost &host, const QString &stored,
                const QString &current) {
    state.SpotLines_Last += 1;
    state.SpotLines.resize(state.SpotLines_Last + 1);
    state.SpotLines[state.SpotLines_Last] = stored;
    // One line over the limit asks the evaluation to drop the oldest one,
    // which keeps the list at MaxSpotLines for a run of any length.
    state.SpotLine_Count = state.SpotLines_Last > state.MaxSpotLines ? 1 : 0;
    state.CurrentSpotLine = current;
    try {
        host.evaluateClusterLine();
    } catch (const RunTimeError &) {
        // The evaluation leaves the spot out; the stream goes on.
    }
    state.SpotLines_Last = static_cast<std::int32_t>(state.SpotLines.size()) - 1;
}

void handleSpotText(ProgramState &state, ReceiveHost &host) {
    const QString &text = state.Telnet_Text;
    state.Telnet_Parts = text.split(state.SpotPrefix);
    state.Telnet_PartCount = static_cast<std::int32_t>(state.Telnet_Parts.size()) - 1;

    if (state.Telnet_PartCount == 1) {
        try {
            state.Spot_Frequency = lineFrequency(state, text, 6);
        } catch (const RunTimeError &) {
            // Passed over: the frequency keeps its value.
        }
        if (state.Spot_Frequency > state.Telnet_MinFrequency) {
            acceptLine(state, host, text, text);
        }
        return;
    }
    // Several spot lines: each part without its prefix, one CR LF cut off.
    const QStringList parts = state.Telnet_Parts;
    for (std::int32_t i = 1; i <= state.Telnet_PartCount; ++i) {
        const QString &part = parts.at(i);
        try {
            state.Spot_Frequency = lineFrequency(state, part, 0);
        } catch (const RunTimeError &) {
        }
        if (state.Spot_Frequency > state.Telnet_MinFrequency) {
            QString current = part;
            if (current.endsWith(QLatin1String("\r\n"))) {
                current.chop(2);
            }
            acceptLine(state, host, part, current);
        }
    }
}

} // namespace

QString Remove_BellPairs(QString text) {
    const QString pair(2, QChar(7));
    for (qsizetype at = text.indexOf(pair); at >= 0; at = text.indexOf(pair, at)) {
        text.remove(at, 2);
    }
    return text;
}

bool Is_ClusterPrompt(const QString &text) {
    const qsizetype n = text.size();
    if (n < 3) {
        return false;
    }
    const QString codes = QString::number(text.at(n - 3).unicode()) +
                          QString::number(text.at(n - 2).unicode()) +
                          QString::number(text.at(n - 1).unicode());
    return codes == QLatin1String("621310");
}

void Telnet_Receive(ProgramState &state, ReceiveHost &host) {
    if (state.Telnet_Text.contains(QLatin1String("login:"))) {
        host.sendData(state.OwnCall + QStringLiteral("\r\n"));
        return;
    }
    state.Telnet_Text = Remove_BellPairs(state.Telnet_Text);

    if (left(state.Telnet_Text, 6) == state.SpotPrefix) {
        handleSpotText(state, host);
        return;
    }
    if (state.Telnet_Text.isEmpty()) {
        return;
    }
    if (Is_ClusterPrompt(state.Telnet_Text)) {
        const QString lineEnds = QStringLiteral("\r\n\r\n\r\n");
        state.Telnet_PromptBlock = lineEnds + state.Telnet_Text + lineEnds;
        host.setStatus(QStringLiteral(" Connected to ") + state.Telnet_Call + QLatin1Char(' ') +
                           state.Telnet_Host + QLatin1Char(':') + state.Telnet_Port,
                       Yellow);
        for (int i = 0; i < 4; ++i) {
            host.displayPane(i).insertColored(state.Telnet_PromptBlock, Blue);
        }
        for (int i = 0; i < 4; ++i) {
            host.workingPane(i).insertColored(state.Telnet_PromptBlock, Blue);
        }
        for (int i = 0; i < 4; ++i) {
            host.displayPane(i).setCaret(0);
        }
        for (int i = 0; i < 4; ++i) {
            host.workingPane(i).setCaret(0);
        }
        host.processEvents();
    }
    host.hideWorkLabel();
    host.processEvents();
}

} // namespace zkr
