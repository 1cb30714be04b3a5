#include "SpotFileReplay.h"

#include "Platform.h"
#include "ProgramState.h"
#include "RunTimeError.h"
#include "TelnetReceive.h"

#include <QFile>

namespace zkr {

namespace {

void receiveLine(ProgramState &state, ReceiveHost &host, const char *data, qsizetype size) {
    state.Telnet_Text = QString::fromLatin1(data, size);
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
    return replayDevice(file, state, host);
}

long long SpotFileReplay::replayDevice(QIODevice &input, ProgramState &state, ReceiveHost &host) {
    long long lines = 0;
    // A line cut by the end of a block waits in `pending` for its rest.
    QByteArray pending;
    bool afterCr = false;
    char buffer[65536];
    for (qint64 got = input.read(buffer, sizeof buffer); got > 0;
         got = input.read(buffer, sizeof buffer)) {
        qint64 start = 0;
        for (qint64 i = 0; i < got; ++i) {
            const char c = buffer[i];
            if (c == '\n' && afterCr) {
                afterCr = false;
                start = i + 1;
                continue;
            }
            afterCr = c == '\r';
            if (c != '\r' && c != '\n') {
                continue;
            }
            if (pending.isEmpty()) {
                receiveLine(state, host, buffer + start, i - start);
            } else {
                pending.append(buffer + start, i - start);
                receiveLine(state, host, pending.constData(), pending.size());
                pending.clear();
            }
            ++lines;
            start = i + 1;
        }
        pending.append(buffer + start, got - start);
    }
    if (!pending.isEmpty()) {
        receiveLine(state, host, pending.constData(), pending.size());
        ++lines;
    }
    return lines;
}

} // namespace zkr
