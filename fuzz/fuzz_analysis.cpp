// One spot line, anything at all, through the analysis and the printers.
#include "FuzzSupport.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    ensureApplication();
    if (size == 0) {
        return 0;
    }
    zkr::CliReplay replay(fuzzOptions(data[0], false));
    // As the cluster sends it: the prefix, the line, its end.
    QString line =
        QStringLiteral("DX de ") + QString::fromLatin1(reinterpret_cast<const char *>(data + 1),
                                                       static_cast<qsizetype>(size - 1));
    replay.receiveChunk(line + QStringLiteral("\r\n"));
    replay.receiveChunk(line + QStringLiteral("\r\n") + line);
    replay.refreshDisplay();
    checkPanes(replay);
    return 0;
}
