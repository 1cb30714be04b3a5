#include "ResultOutput.h"

#include "Pane.h"
#include "ProgramState.h"
#include "RunTimeError.h"
#include "TextFunctions.h"

#include <array>
#include <cassert>
#include <cmath>
#include <limits>

namespace zkr {

namespace {

// Beyond this a double no longer prints as a plain whole number.
constexpr double LargestWhole = 1.0e15;

// A field's text, built without touching the heap: fields are short.
class FieldText {
public:
    FieldText &operator<<(QLatin1StringView text) {
        for (const char c : text) {
            put(static_cast<char16_t>(static_cast<unsigned char>(c)));
        }
        return *this;
    }
    FieldText &operator<<(QStringView text) {
        for (const QChar c : text) {
            put(c.unicode());
        }
        return *this;
    }
    // The number preceded by blanks up to three characters; a minus sign
    // counts as a character.
    FieldText &padded3(long long number) {
        std::array<char16_t, 24> digits{};
        int count = 0;
        unsigned long long magnitude = number < 0 ? 0ULL - static_cast<unsigned long long>(number)
                                                  : static_cast<unsigned long long>(number);
        do {
            digits[static_cast<std::size_t>(count++)] =
                static_cast<char16_t>(u'0' + magnitude % 10);
            magnitude /= 10;
        } while (magnitude != 0);
        if (number < 0) {
            digits[static_cast<std::size_t>(count++)] = u'-';
        }
        for (int blank = count; blank < 3; ++blank) {
            put(u' ');
        }
        while (count > 0) {
            put(digits[static_cast<std::size_t>(--count)]);
        }
        return *this;
    }
    QStringView view() const { return QStringView(buffer_.data(), size_); }

private:
    void put(char16_t c) {
        assert(size_ < static_cast<qsizetype>(buffer_.size()));
        buffer_[static_cast<std::size_t>(size_++)] = c;
    }

    std::array<char16_t, 96> buffer_{};
    qsizetype size_ = 0;
};

// Black, grey when the cloud is below the own horizon, magenta when the
// field's frequency test holds; the later rule wins.
std::uint32_t fieldColour(const ProgramState &s, bool magenta) {
    if (magenta) {
        return Colour_Value(s.Color_Magenta);
    }
    if (Round_Half_Up(s.OwnMid_Elevation) < 0) {
        return Colour_Value(s.Color_Grey);
    }
    return Colour_Value(s.Color_Black);
}

bool isDoubtfulEs(const ProgramState &s, long long muf) {
    const double band = std::floor(static_cast<double>(s.Spot_Frequency));
    return s.Spot_Mode == QLatin1String("??") || muf > 250 || (band == 144 && muf >= 240) ||
           (band == 70 && muf >= 220) || (band == 50 && muf >= 200);
}

} // namespace

void Print_Colored(Pane &pane, QStringView text, std::uint32_t colour) {
    pane.insertColored(text, colour);
}

unsigned Selected_Panes(const ProgramState &state) {
    const double f = state.Spot_Frequency;
    unsigned selected = 1U;
    if (f >= 30 && f <= 300) {
        selected |= 1U << 1;
    }
    if (f >= 144 && f <= 148) {
        selected |= 1U << 2;
    }
    if (state.Spot_Mode == QLatin1String("ES")) {
        selected |= 1U << 3;
    }
    return selected;
}

void Print_ToSelected(const ProgramState &state, const ResultPanes &panes, QStringView text,
                      std::uint32_t colour) {
    const unsigned selected = Selected_Panes(state);
    for (std::size_t i = 0; i < panes.size(); ++i) {
        if ((selected & (1U << i)) != 0) {
            Print_Colored(*panes[i], text, colour);
        }
    }
}

long long Round_Half_Up(double x) {
    const double whole = std::floor(x + 0.5);
    if (!std::isfinite(whole) || std::fabs(whole) >= LargestWhole) {
        throw RunTimeError(RunTimeError::Overflow);
    }
    return static_cast<long long>(whole);
}

std::uint32_t Colour_Value(const QString &text) {
    bool ok = false;
    long long value = text.toLongLong(&ok);
    if (!ok) {
        const double number = text.toDouble(&ok);
        if (!ok || !std::isfinite(number)) {
            throw RunTimeError(RunTimeError::TypeMismatch);
        }
        if (std::fabs(number) > 4.0e9) {
            throw RunTimeError(RunTimeError::Overflow);
        }
        value = static_cast<long long>(roundHalfEven(number));
    }
    if (value < std::numeric_limits<std::int32_t>::min() ||
        value > std::numeric_limits<std::int32_t>::max()) {
        throw RunTimeError(RunTimeError::Overflow);
    }
    return static_cast<std::uint32_t>(static_cast<std::int32_t>(value));
}

void Print_MufField(ProgramState &state, const ResultPanes &panes) {
    const long long muf = Round_Half_Up(state.Es_MUF);
    state.Es_Flag = isDoubtfulEs(state, muf) ? QStringLiteral("Es? ") : QStringLiteral("    ");
    FieldText text;
    text << QStringView(state.Es_Flag) << QLatin1StringView("MUF=");
    text.padded3(muf) << QLatin1StringView("MHz");
    Print_ToSelected(state, panes, text.view(), fieldColour(state, muf >= 144));
}

void Print_MidSquare(const ProgramState &state, const ResultPanes &panes) {
    const long long muf = Round_Half_Up(state.Es_MUF);
    FieldText text;
    text << QLatin1StringView("@") << QStringView(state.Mid_Locator).left(4)
         << QLatin1StringView(" ");
    Print_ToSelected(state, panes, text.view(), fieldColour(state, muf >= state.MinFrequency_MHz));
}

void Print_FotField(const ProgramState &state, const ResultPanes &panes) {
    const long long ownMuf = Round_Half_Up(state.Own_MUF);
    FieldText text;
    if (ownMuf > 0) {
        text << QLatin1StringView(" FOT=");
        text.padded3(ownMuf) << QLatin1StringView("MHz");
    } else {
        text << QLatin1StringView("     ") << QLatin1StringView("   ") << QLatin1StringView("   ");
    }
    Print_ToSelected(state, panes, text.view(), fieldColour(state, ownMuf >= 144));
}

void Print_AzField(const ProgramState &state, const ResultPanes &panes) {
    if (state.OwnMid_Distance < state.Distance_Limit) {
        const long long ownMuf = Round_Half_Up(state.Own_MUF);
        const long long elevation = Round_Half_Up(state.OwnMid_Elevation);
        FieldText text;
        text << QLatin1StringView(" -> ") << QStringView(state.Far_Locator).left(4)
             << QLatin1StringView(" AZ=");
        text.padded3(Round_Half_Up(state.OwnMid_Azimuth)) << QLatin1StringView(" EL=");
        text.padded3(elevation);
        Print_ToSelected(state, panes, text.view(),
                         fieldColour(state, ownMuf >= 144 && elevation >= 0));
    }
    Print_LineEnd(state, panes);
}

void Print_LineEnd(const ProgramState &state, const ResultPanes &panes) {
    Print_ToSelected(state, panes, u"\r\n", 0);
}

} // namespace zkr
