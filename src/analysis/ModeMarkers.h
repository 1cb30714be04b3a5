#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace zkr {

struct SpotWork;

// How a marker must sit in the comment for its test to succeed, and what is
// cut from the comment when it does.
enum class MarkerKind : std::uint8_t {
    Ends,     // the comment ends with it; the end is cut off
    Begins,   // the comment begins with it; the beginning is cut off
    Equals,   // the comment is exactly it; the comment becomes ""
    Contains, // it occurs in the comment; its first occurrence is cut out
};

enum class SpotModeKind : std::uint8_t { ES, MS, TR, EME, SAT, MUF };

struct ModeMarkerTest {
    std::u16string_view marker;
    MarkerKind kind;
    SpotModeKind mode;
};

// The marker tests in the order they are tried; the first success decides.
// Blanks in the markers are significant. Some tests repeat earlier ones and
// can never succeed; they stay so that the order is the one users know.
inline constexpr std::array<ModeMarkerTest, 63> ModeMarkerTests{{
    {u" ES", MarkerKind::Ends, SpotModeKind::ES},
    {u"ES ", MarkerKind::Begins, SpotModeKind::ES},
    {u"ES", MarkerKind::Equals, SpotModeKind::ES},
    {u" MS", MarkerKind::Ends, SpotModeKind::MS},
    {u"MS ", MarkerKind::Begins, SpotModeKind::MS},
    {u"MS", MarkerKind::Equals, SpotModeKind::MS},
    {u" TR", MarkerKind::Ends, SpotModeKind::TR},
    {u"TR ", MarkerKind::Begins, SpotModeKind::TR},
    {u"TR", MarkerKind::Equals, SpotModeKind::TR},
    {u" EME", MarkerKind::Ends, SpotModeKind::EME},
    {u"EME ", MarkerKind::Begins, SpotModeKind::EME},
    {u"EME", MarkerKind::Equals, SpotModeKind::EME},
    {u" SAT", MarkerKind::Ends, SpotModeKind::SAT},
    {u"SAT ", MarkerKind::Begins, SpotModeKind::SAT},
    {u"SAT", MarkerKind::Equals, SpotModeKind::SAT},
    {u"<ES>", MarkerKind::Contains, SpotModeKind::ES},
    {u"(ES)", MarkerKind::Contains, SpotModeKind::ES},
    {u"<ES", MarkerKind::Contains, SpotModeKind::ES},
    {u"ES>", MarkerKind::Contains, SpotModeKind::ES},
    {u"<EME>", MarkerKind::Contains, SpotModeKind::EME},
    {u"(EME)", MarkerKind::Contains, SpotModeKind::EME},
    {u"<EME", MarkerKind::Contains, SpotModeKind::EME},
    {u"EME>", MarkerKind::Contains, SpotModeKind::EME},
    {u"<MS>", MarkerKind::Contains, SpotModeKind::MS},
    {u"(MS)", MarkerKind::Contains, SpotModeKind::MS},
    {u"<MS", MarkerKind::Contains, SpotModeKind::MS},
    {u"MS>", MarkerKind::Contains, SpotModeKind::MS},
    {u"<SAT>", MarkerKind::Contains, SpotModeKind::SAT},
    {u"(SAT)", MarkerKind::Contains, SpotModeKind::SAT},
    {u"<SAT", MarkerKind::Contains, SpotModeKind::SAT},
    {u"SAT>", MarkerKind::Contains, SpotModeKind::SAT},
    {u"<TR>", MarkerKind::Contains, SpotModeKind::TR},
    {u"(TR)", MarkerKind::Contains, SpotModeKind::TR},
    {u"<TR", MarkerKind::Contains, SpotModeKind::TR},
    {u"TR>", MarkerKind::Contains, SpotModeKind::TR},
    {u":ES:", MarkerKind::Contains, SpotModeKind::ES},
    {u" ES ", MarkerKind::Contains, SpotModeKind::ES},
    {u"ES ", MarkerKind::Begins, SpotModeKind::ES},
    {u" ES", MarkerKind::Ends, SpotModeKind::ES},
    {u":EME:", MarkerKind::Contains, SpotModeKind::EME},
    {u" EME ", MarkerKind::Contains, SpotModeKind::EME},
    {u"EME ", MarkerKind::Begins, SpotModeKind::EME},
    {u" EME", MarkerKind::Ends, SpotModeKind::EME},
    {u":MS:", MarkerKind::Contains, SpotModeKind::MS},
    {u" MS ", MarkerKind::Contains, SpotModeKind::MS},
    {u"MS ", MarkerKind::Begins, SpotModeKind::MS},
    {u" MS", MarkerKind::Ends, SpotModeKind::MS},
    {u":SAT:", MarkerKind::Contains, SpotModeKind::SAT},
    {u" SAT ", MarkerKind::Contains, SpotModeKind::SAT},
    {u"SAT ", MarkerKind::Begins, SpotModeKind::SAT},
    {u" SAT", MarkerKind::Ends, SpotModeKind::SAT},
    {u":TR:", MarkerKind::Contains, SpotModeKind::TR},
    {u" TR ", MarkerKind::Contains, SpotModeKind::TR},
    {u"TR ", MarkerKind::Begins, SpotModeKind::TR},
    {u" TR", MarkerKind::Ends, SpotModeKind::TR},
    {u" MUF ", MarkerKind::Contains, SpotModeKind::MUF},
    {u"<MUF", MarkerKind::Contains, SpotModeKind::MUF},
    {u"MUF>", MarkerKind::Contains, SpotModeKind::MUF},
    {u"MUF ", MarkerKind::Begins, SpotModeKind::MUF},
    {u" MUF", MarkerKind::Ends, SpotModeKind::MUF},
    {u" MUF2 ", MarkerKind::Contains, SpotModeKind::MUF},
    {u"MUF2 ", MarkerKind::Begins, SpotModeKind::MUF},
    {u" MUF2", MarkerKind::Ends, SpotModeKind::MUF},
}};

// Decides the spot's mode from its locators and the scratch's upper-cased
// comment, and cuts the marker found out of that comment.
// Both locators in one square make the spot "TR" whatever the comment says,
// and the comment is left alone. No marker gives "??".
void Find_Mode(SpotWork &work);

} // namespace zkr
