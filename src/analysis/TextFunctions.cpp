#include "TextFunctions.h"

#include "RunTimeError.h"

#include <charconv>
#include <cmath>
#include <string>
#include <string_view>

namespace zkr {

QString mid(QStringView text, int start, int length) {
    if (start < 1 || length <= 0 || start > text.size()) {
        return QString();
    }
    return text.mid(start - 1, length).toString();
}

QString mid(QStringView text, int start) {
    if (start < 1 || start > text.size()) {
        return QString();
    }
    return text.mid(start - 1).toString();
}

QString left(QStringView text, int length) {
    return length <= 0 ? QString() : text.left(length).toString();
}

QString right(QStringView text, int length) {
    return length <= 0 ? QString() : text.right(length).toString();
}

int inStr(QStringView text, QStringView what, int start) {
    if (start < 1 || start > text.size() + 1) {
        return 0;
    }
    const qsizetype at = text.indexOf(what, start - 1);
    return at < 0 ? 0 : static_cast<int>(at) + 1;
}

QString trimBlanks(QStringView text) {
    qsizetype first = 0;
    qsizetype last = text.size();
    while (first < last && text[first] == QLatin1Char(' ')) {
        ++first;
    }
    while (last > first && text[last - 1] == QLatin1Char(' ')) {
        --last;
    }
    return text.mid(first, last - first).toString();
}

double leadingNumber(QStringView text) {
    std::string number;
    number.reserve(24);
    bool sign = false;
    bool point = false;
    bool digits = false;
    for (const QChar c : text) {
        const char16_t u = c.unicode();
        if (u == u' ' || u == u'\t') {
            continue;
        }
        if (u >= u'0' && u <= u'9') {
            number.push_back(static_cast<char>(u));
            digits = true;
        } else if (u == u'.' && !point) {
            number.push_back('.');
            point = true;
        } else if ((u == u'-' || u == u'+') && !sign && !digits && !point) {
            number.push_back(static_cast<char>(u));
            sign = true;
        } else {
            break;
        }
    }
    if (!digits) {
        return 0;
    }
    const char *begin = number.data();
    if (*begin == '+') {
        ++begin;
    }
    double value = 0;
    const auto [end, error] = std::from_chars(begin, number.data() + number.size(), value);
    (void)end;
    if (error == std::errc::result_out_of_range) {
        // Too large, or so small that only zero is left: the integer part
        // tells which.
        const auto integer = std::string_view(begin).substr(0, std::string_view(begin).find('.'));
        if (integer.find_first_not_of("+-0") != std::string_view::npos) {
            throw RunTimeError(RunTimeError::Overflow);
        }
        return 0;
    }
    return value;
}

double roundHalfEven(double value) {
    return std::nearbyint(value);
}

} // namespace zkr
