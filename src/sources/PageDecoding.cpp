#include "PageDecoding.h"

#include <QStringDecoder>

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace zkr {

namespace {

// 0x80-0x9F; the five bytes Windows-1252 leaves free keep their C1 code, as
// browsers read them.
constexpr std::array<char16_t, 32> HighControls = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

// Browsers look for the meta tag in this much of the page only.
constexpr qsizetype MetaPrescanBytes = 1024;

bool isSpace(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f';
}

// The first charset named in lower-case `text` ("charset = 'utf-8'"); a
// "charset" without "=" after it names none.
std::optional<QByteArray> charsetIn(const QByteArray &text) {
    for (qsizetype at = text.indexOf("charset"); at >= 0; at = text.indexOf("charset", at + 1)) {
        qsizetype i = at + 7;
        while (i < text.size() && isSpace(text[i])) {
            ++i;
        }
        if (i >= text.size() || text[i] != '=') {
            continue;
        }
        do {
            ++i;
        } while (i < text.size() && isSpace(text[i]));
        if (i < text.size() && (text[i] == '"' || text[i] == '\'')) {
            ++i;
        }
        const qsizetype start = i;
        while (i < text.size() && !isSpace(text[i]) &&
               !QByteArrayView("\"';>/").contains(text[i])) {
            ++i;
        }
        return text.mid(start, i - start);
    }
    return std::nullopt;
}

std::optional<QByteArray> metaCharset(QByteArrayView body) {
    const QByteArray head =
        body.first(std::min(body.size(), MetaPrescanBytes)).toByteArray().toLower();
    for (qsizetype tag = head.indexOf("<meta"); tag >= 0; tag = head.indexOf("<meta", tag + 1)) {
        const qsizetype end = head.indexOf('>', tag);
        if (auto charset = charsetIn(head.mid(tag, end < 0 ? -1 : end - tag))) {
            return charset;
        }
    }
    return std::nullopt;
}

bool isUtf8(const QByteArray &charset) {
    return charset == "utf-8" || charset == "utf8";
}

bool isAscii(QByteArrayView bytes) {
    unsigned char any = 0;
    for (const char c : bytes) {
        any |= static_cast<unsigned char>(c); // no early exit: the compiler vectorises this
    }
    return any < 0x80;
}

// How many bytes from the start are whole, valid UTF-8 (RFC 3629: no
// overlong forms, no surrogates, nothing above U+10FFFF). `cut` is set when
// the text stops at a character that is valid so far but ends with the bytes.
qsizetype validUtf8Prefix(QByteArrayView bytes, bool *cut = nullptr) {
    const qsizetype size = bytes.size();
    qsizetype i = 0;
    while (i < size) {
        const auto lead = static_cast<unsigned char>(bytes[i]);
        if (lead < 0x80) {
            ++i;
            continue;
        }
        int length = 0;
        unsigned char low = 0x80; // the range of the second byte
        unsigned char high = 0xBF;
        if (lead >= 0xC2 && lead <= 0xDF) {
            length = 2;
        } else if (lead >= 0xE0 && lead <= 0xEF) {
            length = 3;
            low = lead == 0xE0 ? 0xA0 : 0x80;
            high = lead == 0xED ? 0x9F : 0xBF;
        } else if (lead >= 0xF0 && lead <= 0xF4) {
            length = 4;
            low = lead == 0xF0 ? 0x90 : 0x80;
            high = lead == 0xF4 ? 0x8F : 0xBF;
        } else {
            return i;
        }
        for (int k = 1; k < length; ++k) {
            if (i + k >= size) {
                if (cut != nullptr) {
                    *cut = true;
                }
                return i;
            }
            const auto next = static_cast<unsigned char>(bytes[i + k]);
            if (next < (k == 1 ? low : 0x80) || next > (k == 1 ? high : 0xBF)) {
                return i;
            }
        }
        i += length;
    }
    return size;
}

} // namespace

QString decodeWindows1252(QByteArrayView bytes) {
    QString text(bytes.size(), Qt::Uninitialized);
    QChar *out = text.data();
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        *out++ = QChar(byte >= 0x80 && byte < 0xA0 ? HighControls[byte - 0x80] : char16_t{byte});
    }
    return text;
}

QString decodeClusterLine(QByteArrayView line, bool *utf8) {
    if (isAscii(line)) {
        if (utf8 != nullptr) {
            *utf8 = false;
        }
        return QString::fromLatin1(line);
    }
    const bool valid = validUtf8Prefix(line) == line.size();
    if (utf8 != nullptr) {
        *utf8 = valid;
    }
    return valid ? QString::fromUtf8(line) : decodeWindows1252(line);
}

QString StreamDecoder::decode(QByteArrayView bytes) {
    QByteArray joined;
    if (!held_.isEmpty()) {
        joined = std::exchange(held_, {}) + bytes.toByteArray();
        bytes = joined;
    }
    if (isAscii(bytes)) {
        return QString::fromLatin1(bytes);
    }
    QString text;
    text.reserve(bytes.size());
    qsizetype start = 0;
    while (start < bytes.size()) {
        qsizetype end = start;
        while (end < bytes.size() && bytes[end] != '\n' && bytes[end] != '\r') {
            ++end;
        }
        const bool lastPiece = end == bytes.size();
        end = std::min(end + 1, bytes.size()); // with its line end
        const QByteArrayView line = bytes.sliced(start, end - start);
        bool cut = false;
        const qsizetype valid = lastPiece ? validUtf8Prefix(line, &cut) : 0;
        if (cut) {
            // The rest of the character comes with the next read.
            text += QString::fromUtf8(line.first(valid));
            held_ = line.sliced(valid).toByteArray();
        } else {
            text += decodeClusterLine(line);
        }
        start = end;
    }
    return text;
}

QString decodeWebPage(QByteArrayView body, QByteArrayView contentType) {
    if (body.startsWith("\xEF\xBB\xBF")) {
        return QString::fromUtf8(body.sliced(3));
    }
    for (const auto &[mark, encoding] : {std::pair{"\xFF\xFE", QStringConverter::Utf16LE},
                                         std::pair{"\xFE\xFF", QStringConverter::Utf16BE}}) {
        if (body.startsWith(QByteArrayView(mark))) {
            QStringDecoder decoder(encoding); // drops the mark itself
            return decoder(body);
        }
    }
    std::optional<QByteArray> charset = charsetIn(contentType.toByteArray().toLower());
    if (!charset) {
        charset = metaCharset(body);
    }
    if (charset && isUtf8(*charset)) {
        return QString::fromUtf8(body);
    }
    return decodeWindows1252(body);
}

} // namespace zkr
