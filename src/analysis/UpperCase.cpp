#include "UpperCase.h"

namespace zkr {

namespace {

char16_t upperOf(char16_t c) {
    if (c < 0x80) {
        return (c >= u'a' && c <= u'z') ? static_cast<char16_t>(c - (u'a' - u'A')) : c;
    }
    const char32_t upper = QChar::toUpper(static_cast<char32_t>(c));
    // A mapping that would leave the basic plane would change the length.
    return upper <= 0xFFFF ? static_cast<char16_t>(upper) : c;
}

} // namespace

QString upperCase(const QString &text) {
    const qsizetype size = text.size();
    const QChar *source = text.constData();
    // Spot texts are short and mostly upper-case ASCII already: a scan
    // without branches finds out whether anything can change at all.
    bool mayChange = false;
    for (qsizetype i = 0; i < size; ++i) {
        const char16_t c = source[i].unicode();
        mayChange |= static_cast<char16_t>(c - u'a') < 26 || c >= 0x80;
    }
    if (!mayChange) {
        return text;
    }
    qsizetype first = 0;
    while (first < size && upperOf(source[first].unicode()) == source[first].unicode()) {
        ++first;
    }
    if (first == size) {
        return text;
    }
    QString result = text;
    QChar *target = result.data();
    for (qsizetype i = first; i < size; ++i) {
        target[i] = QChar(upperOf(target[i].unicode()));
    }
    return result;
}

void upperCaseInto(QStringView text, QString &target) {
    const qsizetype size = text.size();
    target.resize(size);
    QChar *out = target.data();
    for (qsizetype i = 0; i < size; ++i) {
        out[i] = QChar(upperOf(text[i].unicode()));
    }
}

} // namespace zkr
