// A downloaded web spot page, anything at all: tag removal, the cut of the
// redirect script, the line split, the entity clean-up and the evaluation.
#include "FuzzSupport.h"
#include "PageDecoding.h"
#include "SpotLineParsing.h"
#include "SpotPage.h"

namespace {

// Tag removal the slow, obvious way: the first "<" to the first ">" after
// it, again and again, until a "<" has no ">" after it.
QString stripTagsSlowly(QString text) {
    for (qsizetype open = text.indexOf(u'<'); open >= 0; open = text.indexOf(u'<')) {
        const qsizetype close = text.indexOf(u'>', open);
        if (close < 0) {
            break;
        }
        text.remove(open, close - open + 1);
    }
    return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    ensureApplication();
    if (size == 0) {
        return 0;
    }
    const QByteArray page(reinterpret_cast<const char *>(data + 1),
                          static_cast<qsizetype>(size - 1));
    const QString text = zkr::decodeWebPage(page);
    const QString stripped = zkr::Strip_Tags(text);
    check(stripped == stripTagsSlowly(text));
    for (const QString &line : zkr::Split_SpotPage(stripped)) {
        // The clean-up only ever shortens or keeps a line.
        check(zkr::Clean_SpotLine(line).size() <= line.size());
    }
    zkr::CliReplay replay(fuzzOptions(data[0], true));
    QBuffer input;
    input.setData(page);
    input.open(QIODevice::ReadOnly);
    replay.evaluateSpotPage(input);
    checkPanes(replay);
    return 0;
}
