#include "SpotFileReplay.h"

#include "Platform.h"
#include "ProgramState.h"
#include "RunTimeError.h"
#include "TelnetReceive.h"

#include <QFile>

namespace zkr {

namespace {

void receiveLine(ProgramState &state, ReceiveHost &host, const QByteArray &bytes) {
    state.Telnet_Text = QString::fromLatin1(bytes);
    Telnet_Receive(state, host);
}

} // namespace

void SpotFileReplay::Replay_SpotFile(ProgramState &state, Platform &platform, ReceiveHost &host) {
    FileDialogRequest request;
    request.title = QStringLiteral("Select the File...");
    request.mustExist = true;
    request.filter = QStringLiteral("E-skip files (*.txt, *.txt)|*.txt;*.txt|all files (*.*)|*.*");
    request.filterIndex = 1;
    request.initialFolder = platform.applicationFolder();
    const QString chosen = platform.openFileDialog(request);
    if (!chosen.isEmpty()) {
        fileName_ = chosen;
    }
    if (fileName_.isEmpty()) {
        return;
    }
    replayFile(fileName_, state, host);
}

long long SpotFileReplay::replayFile(const QString &fileName, ProgramState &state,
                                     ReceiveHost &host) {
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        throw RunTimeError(RunTimeError::FileNotFound, fileName);
    }
    // Lines end at CR LF, CR or LF; the end itself is not part of the line.
    long long lines = 0;
    QByteArray line;
    bool afterCr = false;
    char buffer[65536];
    for (qint64 got = file.read(buffer, sizeof buffer); got > 0;
         got = file.read(buffer, sizeof buffer)) {
        for (qint64 i = 0; i < got; ++i) {
            const char c = buffer[i];
            if (c == '\n' && afterCr) {
                afterCr = false;
                continue;
            }
            afterCr = c == '\r';
            if (c == '\r' || c == '\n') {
                receiveLine(state, host, line);
                line.clear();
                ++lines;
            } else {
                line.append(c);
            }
        }
    }
    if (!line.isEmpty()) {
        receiveLine(state, host, line);
        ++lines;
    }
    return lines;
}

} // namespace zkr
