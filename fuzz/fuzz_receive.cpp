// Arbitrary chunks from a cluster: each chunk is a length byte and that many
// bytes, through the receive processor, the evaluation and the panes.
#include "FuzzSupport.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    ensureApplication();
    if (size == 0) {
        return 0;
    }
    zkr::CliReplay replay(fuzzOptions(data[0], false));
    std::size_t at = 1;
    while (at < size) {
        const std::size_t length = std::min<std::size_t>(data[at] + 1u, size - at - 1);
        ++at;
        replay.receiveChunk(QString::fromLatin1(reinterpret_cast<const char *>(data + at),
                                                static_cast<qsizetype>(length)));
        at += length;
    }
    replay.refreshDisplay();
    checkPanes(replay);
    return 0;
}
