#include "SpotPage.h"

namespace zkr {

QString Strip_Tags(QString text) {
    // One pass: what stands before the first "<" never changes again, so
    // each removal can go on from where the last one ended instead of
    // searching the whole text anew.
    const qsizetype firstOpen = text.indexOf(QLatin1Char('<'));
    if (firstOpen < 0) {
        return text;
    }
    QString out;
    out.reserve(text.size());
    qsizetype from = 0;
    for (qsizetype open = firstOpen; open >= 0; open = text.indexOf(QLatin1Char('<'), from)) {
        // A ">" before the "<" is text; the tag ends at the next ">" after it.
        const qsizetype close = text.indexOf(QLatin1Char('>'), open);
        if (close < 0) {
            // An unmatched "<" would never leave the loop: the rest stays.
            break;
        }
        out.append(QStringView(text).sliced(from, open - from));
        from = close + 1;
    }
    out.append(QStringView(text).sliced(from));
    return out;
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
