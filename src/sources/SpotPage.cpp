#include "SpotPage.h"

namespace zkr {

QString Strip_Tags(QString text) {
    for (;;) {
        const qsizetype open = text.indexOf(QLatin1Char('<'));
        if (open < 0) {
            return text;
        }
        const qsizetype close = text.indexOf(QLatin1Char('>'));
        if (close <= open) {
            const qsizetype next = text.indexOf(QLatin1Char('>'), open);
            if (next < 0) {
                // An unmatched "<" would never leave the loop.
                return text;
            }
            // A stray ">" before the first "<" would stop the loop for
            // ever too; it is text, the tag is the pair after it.
            text.remove(open, next - open + 1);
            continue;
        }
        text.remove(open, close - open + 1);
    }
}

QStringList Split_SpotPage(const QString &strippedPage) {
    const QString rest = strippedPage.mid(79);
    if (rest.isEmpty()) {
        return {};
    }
    return rest.split(QLatin1Char('\n'));
}

bool Is_ErrorPage(const QString &page) {
    return page.contains(QLatin1String(">Network Error<")) ||
           page.contains(QLatin1String(">Server Error<")) ||
           page.contains(QLatin1String(">Runtime Error<"));
}

} // namespace zkr
