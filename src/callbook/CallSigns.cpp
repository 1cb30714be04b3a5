#include "CallSigns.h"

namespace zkr {

namespace {

// 0 is "no character", so that a shorter call never equals a longer one.
int charCode(char16_t u) {
    if (u >= u'0' && u <= u'9') {
        return 1 + (u - u'0');
    }
    if (u >= u'A' && u <= u'Z') {
        return 11 + (u - u'A');
    }
    return u == u'/' ? 37 : -1;
}

constexpr char CodeChars[] = "?0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ/";

// Bit position of character i's six bits within its word.
constexpr int shiftOf(int i) {
    return 58 - 6 * (i % 10);
}

template <typename Text> std::optional<CallKey> packText(Text call) {
    if (call.isEmpty() || call.size() > CallKey::MaxLength) {
        return std::nullopt;
    }
    CallKey key;
    for (int i = 0; i < call.size(); ++i) {
        const int code = charCode(static_cast<char16_t>(QChar(call[i]).unicode()));
        if (code < 0) {
            return std::nullopt;
        }
        std::uint64_t &word = i < 10 ? key.hi : key.lo;
        word |= static_cast<std::uint64_t>(code) << shiftOf(i);
    }
    return key;
}

} // namespace

std::optional<CallKey> CallKey::pack(QStringView call) {
    return packText(call);
}

std::optional<CallKey> CallKey::pack(QLatin1StringView call) {
    return packText(call);
}

QString CallKey::unpack() const {
    QString call;
    for (int i = 0; i < MaxLength; ++i) {
        const std::uint64_t word = i < 10 ? hi : lo;
        const auto code = static_cast<int>((word >> shiftOf(i)) & 0x3F);
        if (code == 0 || code >= static_cast<int>(sizeof(CodeChars)) - 1) {
            break;
        }
        call += QLatin1Char(CodeChars[code]);
    }
    return call;
}

CallKey CallKey::prefix(int length) const {
    const auto mask = [](int chars) {
        return chars <= 0 ? 0 : chars >= 10 ? ~0ULL : ~0ULL << (64 - 6 * chars);
    };
    return CallKey{hi & mask(length), lo & mask(length - 10)};
}

QString normalisedCall(QStringView text) {
    text = text.trimmed();
    if (text.endsWith(QLatin1Char(':'))) {
        text.chop(1);
    }
    const qsizetype dash = text.indexOf(QLatin1Char('-'));
    if (dash > 0) {
        text.truncate(dash);
    }
    return text.toString().toUpper();
}

bool isMaritimeOrAir(QStringView call) {
    return call.endsWith(u"/MM") || call.endsWith(u"/AM") || call.contains(u"/MM/") ||
           call.contains(u"/AM/");
}

} // namespace zkr
