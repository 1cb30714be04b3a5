#include "SpotPage.h"

#include "TextFunctions.h"

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

QString Clean_SpotLine(QString line) {
    const std::pair<const char *, const char *> entities[] = {
        {"&lt;", "<"}, {"&gt;", ">"}, {"&amp;", "&"}, {"&quot;", "\""}};
    for (const auto &[entity, plain] : entities) {
        // Each pass searches again from the start until the entity is gone.
        const QString from = QString::fromLatin1(entity);
        const QString to = QString::fromLatin1(plain);
        while (line.contains(from)) {
            line.replace(line.indexOf(from), from.size(), to);
        }
    }
    line.remove(QChar(176));
    const int p = inStr(line, u"<>");
    if (p > 0) {
        // The six characters before the "<>" and the "<>" itself become
        // blanks, so the time and tail columns stay where they were.
        line = left(line, p - 7) + QString(8, QLatin1Char(' ')) + mid(line, p + 2);
    }
    return line;
}

} // namespace zkr
