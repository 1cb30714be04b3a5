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
    const char16_t *source = reinterpret_cast<const char16_t *>(text.utf16());
    qsizetype first = 0;
    while (first < size && upperOf(source[first]) == source[first]) {
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

} // namespace zkr
