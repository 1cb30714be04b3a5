#include "ModeMarkers.h"

#include "SpotWork.h"
#include "UpperCase.h"

#include <bit>
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

// Every marker contains the word of its mode (ES, MS, TR, EME, SAT, MUF),
// so only the tests of modes whose word occurs in the comment can succeed.
// Bit i of a mode's mask marks test i.
constexpr std::array<std::uint64_t, 6> ModeTestMasks = [] {
    std::array<std::uint64_t, 6> masks{};
    for (std::size_t i = 0; i < ModeMarkerTests.size(); ++i) {
        masks[static_cast<std::size_t>(ModeMarkerTests[i].mode)] |= std::uint64_t{1} << i;
    }
    return masks;
}();
static_assert(ModeMarkerTests.size() <= 64, "one bit per test");

struct CommentScan {
    std::uint64_t candidates = 0; // tests that may succeed
    bool mayChangeCase = false;   // lower case or beyond ASCII
};

// One pass over the comment for the mode words and its case.
CommentScan scanComment(std::u16string_view text) {
    CommentScan scan;
    const auto at = [&text](std::size_t i) { return i < text.size() ? text[i] : u'\0'; };
    const auto add = [&scan](SpotModeKind mode) {
        scan.candidates |= ModeTestMasks[static_cast<std::size_t>(mode)];
    };
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t c = text[i];
        scan.mayChangeCase |= static_cast<char16_t>(c - u'a') < 26 || c >= 0x80;
        const char16_t next = at(i + 1);
        if (c == u'E' && next == u'S') {
            add(SpotModeKind::ES);
        } else if (c == u'E' && next == u'M' && at(i + 2) == u'E') {
            add(SpotModeKind::EME);
        } else if (c == u'M' && next == u'S') {
            add(SpotModeKind::MS);
        } else if (c == u'M' && next == u'U' && at(i + 2) == u'F') {
            add(SpotModeKind::MUF);
        } else if (c == u'T' && next == u'R') {
            add(SpotModeKind::TR);
        } else if (c == u'S' && next == u'A' && at(i + 2) == u'T') {
            add(SpotModeKind::SAT);
        }
    }
    return scan;
}

std::u16string_view viewOf(const QString &text) {
    return std::u16string_view(reinterpret_cast<const char16_t *>(text.constData()),
                               static_cast<std::size_t>(text.size()));
}

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

void Find_Mode(SpotWork &work) {
    EvaluatedSpot &spot = work.spot;
    spot.mode = QStringLiteral("??");
    if (!spot.locator1.isEmpty() &&
        QStringView(spot.locator1).left(4) == QStringView(spot.locator2).left(4)) {
        spot.mode = QStringLiteral("TR");
        return;
    }
    // The comment is upper case already unless someone else set it; only
    // then is an upper-cased copy made.
    QString upper;
    std::u16string_view text = viewOf(work.commentUpper);
    CommentScan scan = scanComment(text);
    const bool copied = scan.mayChangeCase;
    if (copied) {
        upper = upperCase(work.commentUpper);
        text = viewOf(upper);
        scan = scanComment(text);
    }
    for (std::uint64_t left = scan.candidates; left != 0; left &= left - 1) {
        const ModeMarkerTest &test =
            ModeMarkerTests[static_cast<std::size_t>(std::countr_zero(left))];
        const qsizetype at = markerPosition(text, test);
        if (at >= 0) {
            spot.mode = modeText(test.mode);
            if (copied) {
                work.commentUpper = std::move(upper);
            }
            work.commentUpper.remove(at, static_cast<qsizetype>(test.marker.size()));
            return;
        }
    }
}

} // namespace zkr
