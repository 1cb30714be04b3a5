#include "ModeMarkers.h"

#include "ProgramState.h"
#include "UpperCase.h"

#include <string_view>

namespace zkr {

namespace {

QString modeText(SpotModeKind mode) {
    switch (mode) {
    case SpotModeKind::ES:
        return QStringLiteral("ES");
    case SpotModeKind::MS:
        return QStringLiteral("MS");
    case SpotModeKind::TR:
        return QStringLiteral("TR");
    case SpotModeKind::EME:
        return QStringLiteral("EME");
    case SpotModeKind::SAT:
        return QStringLiteral("SAT");
    case SpotModeKind::MUF:
        return QStringLiteral("MUF");
    }
    return QStringLiteral("??");
}

// What a text is made of: its ASCII characters and (hashed) pairs of
// adjacent characters. A test whose marker has a character or pair the
// comment lacks cannot succeed and is skipped without a search; most
// comments carry no marker and pass all 63 tests this way. Markers are
// ASCII; other characters of a comment cannot match them.
struct Signature {
    std::uint64_t low = 0;   // characters 0-63
    std::uint64_t high = 0;  // characters 64-127
    std::uint64_t pairs = 0; // adjacent pairs, hashed to 64 bits

    constexpr bool includes(const Signature &other) const {
        return (other.low & ~low) == 0 && (other.high & ~high) == 0 && (other.pairs & ~pairs) == 0;
    }
};

constexpr Signature signatureOf(std::u16string_view text) {
    Signature signature;
    char16_t previous = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t c = text[i];
        if (c < 64) {
            signature.low |= std::uint64_t{1} << c;
        } else if (c < 128) {
            signature.high |= std::uint64_t{1} << (c - 64);
        }
        if (i > 0) {
            signature.pairs |= std::uint64_t{1} << ((previous * 31U + c) & 63U);
        }
        previous = c;
    }
    return signature;
}

constexpr std::array<Signature, ModeMarkerTests.size()> MarkerSignatures = [] {
    std::array<Signature, ModeMarkerTests.size()> signatures{};
    for (std::size_t i = 0; i < signatures.size(); ++i) {
        signatures[i] = signatureOf(ModeMarkerTests[i].marker);
    }
    return signatures;
}();

// Where the marker sits in `comment` if the test succeeds, else -1. Plain
// string-view searches: for texts this short they beat a general search.
qsizetype markerPosition(std::u16string_view comment, const ModeMarkerTest &test) {
    const std::u16string_view marker = test.marker;
    switch (test.kind) {
    case MarkerKind::Ends:
        return comment.ends_with(marker) ? static_cast<qsizetype>(comment.size() - marker.size())
                                         : -1;
    case MarkerKind::Begins:
        return comment.starts_with(marker) ? 0 : -1;
    case MarkerKind::Equals:
        return comment == marker ? 0 : -1;
    case MarkerKind::Contains: {
        const std::size_t at = comment.find(marker);
        return at == std::u16string_view::npos ? -1 : static_cast<qsizetype>(at);
    }
    }
    return -1;
}

} // namespace

void Find_Mode(ProgramState &state) {
    state.Spot_Mode = QStringLiteral("??");
    if (!state.Locator_1.isEmpty() &&
        QStringView(state.Locator_1).left(4) == QStringView(state.Locator_2).left(4)) {
        state.Spot_Mode = QStringLiteral("TR");
        return;
    }
    QString comment = upperCase(state.Comment_Upper);
    const std::u16string_view text(reinterpret_cast<const char16_t *>(comment.utf16()),
                                   static_cast<std::size_t>(comment.size()));
    const Signature present = signatureOf(text);
    for (std::size_t i = 0; i < ModeMarkerTests.size(); ++i) {
        if (!present.includes(MarkerSignatures[i])) {
            continue;
        }
        const ModeMarkerTest &test = ModeMarkerTests[i];
        const qsizetype at = markerPosition(text, test);
        if (at >= 0) {
            state.Spot_Mode = modeText(test.mode);
            // Moved, not copied, so that the cut needs no copy of the text.
            state.Comment_Upper = std::move(comment);
            state.Comment_Upper.remove(at, static_cast<qsizetype>(test.marker.size()));
            return;
        }
    }
}

} // namespace zkr
