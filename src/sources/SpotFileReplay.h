#pragma once

#include <QString>

class QIODevice;

namespace zkr {

struct ProgramState;
class Platform;
class ReceiveHost;

// Replays a recorded spot file line by line through the receive processor,
// exactly as if each line had come from the cluster. The chosen file is
// remembered like a file dialog remembers it: a later cancel replays the
// same file again.
class SpotFileReplay {
public:
    // Asks for the file, then replays it. Throws RunTimeError when the file
    // cannot be read.
    void Replay_SpotFile(ProgramState &state, Platform &platform, ReceiveHost &host);
    // Replays the named file without asking; returns the number of lines.
    static long long replayFile(const QString &fileName, ProgramState &state, ReceiveHost &host);
    // Replays everything readable from `input` (a file, standard input),
    // line by line: lines end at CR LF, CR or LF, the end itself is not part
    // of the line, and text is single-byte.
    static long long replayDevice(QIODevice &input, ProgramState &state, ReceiveHost &host);

    const QString &fileName() const { return fileName_; }

private:
    QString fileName_;
};

} // namespace zkr
