#pragma once

#include <QLatin1StringView>
#include <QString>
#include <QStringView>

#include <cstddef>
#include <cstdint>
#include <optional>

namespace zkr {

// A call of up to 20 characters of A-Z, 0-9 and "/" packed into 128 bits,
// six bits a character, the first character in the top bits of `hi`. A
// call book of hundreds of thousands of calls keeps keys, not strings, and
// the key of a prefix is the call's key with the later characters cleared.
struct CallKey {
    std::uint64_t hi = 0;
    std::uint64_t lo = 0;

    static constexpr int MaxLength = 20;

    // Nothing when the text is empty, longer than MaxLength or holds any
    // other character (upper case only).
    static std::optional<CallKey> pack(QStringView call);
    static std::optional<CallKey> pack(QLatin1StringView call);
    QString unpack() const;
    // The key of the first `length` characters.
    CallKey prefix(int length) const;
    bool isEmpty() const { return hi == 0; }

    friend bool operator==(const CallKey &, const CallKey &) = default;
};

struct CallKeyHash {
    std::size_t operator()(const CallKey &key) const noexcept {
        // The characters sit in the top bits and tables index by the low
        // ones: the finaliser of MurmurHash3 folds the one into the other.
        std::uint64_t h = key.hi ^ (key.lo * 0x9E3779B97F4A7C15ULL);
        h ^= h >> 33;
        h *= 0xFF51AFD7ED558CCDULL;
        h ^= h >> 33;
        h *= 0xC4CEB9FE1A85EC53ULL;
        h ^= h >> 33;
        return static_cast<std::size_t>(h);
    }
};

// A call as cluster lines and reports write it, made comparable: blanks cut,
// upper case, the spotter column's ":" and a login suffix ("-2", "-#") cut
// off. The full call stays otherwise as written: "DL1ABC/P" is not
// "DL1ABC".
QString normalisedCall(QStringView text);

// A call with "/MM" or "/AM": a ship or an aircraft, at no fixed place.
bool isMaritimeOrAir(QStringView call);

} // namespace zkr
