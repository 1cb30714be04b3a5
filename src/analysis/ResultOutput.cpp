#include "ResultOutput.h"

#include "EsPathModel.h"
#include "EvaluatedSpot.h"
#include "RunTimeError.h"

#include <array>
#include <cassert>
#include <cmath>
#include <utility>

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

const QString LineEnd = QStringLiteral("\r\n");

// Black, grey when the cloud is below the own horizon, magenta when the
// field's frequency test holds; the later rule wins.
std::uint32_t fieldColour(const EsPath &path, bool magenta) {
    if (magenta) {
        return Color_Magenta;
    }
    if (Round_Half_Up(path.elevation) < 0) {
        return Color_Grey;
    }
    return Color_Black;
}

// Room for all four result fields in one run.
constexpr qsizetype FieldRunCapacity = 64;

// A field joins the field before it when they have one colour: most lines
// print all four fields in one run, one string.
void append(EvaluatedSpot &spot, const FieldText &text, std::uint32_t colour) {
    if (!spot.runs.isEmpty()) {
        TextRun &last = spot.runs.last();
        // The raw line's run shares the line's text; a field run is its own.
        if (last.colour == colour && last.text.isDetached() && last.text != LineEnd) {
            last.text.append(text.view());
            return;
        }
    }
    QString field;
    field.reserve(FieldRunCapacity);
    field.append(text.view());
    spot.runs.append(TextRun{std::move(field), colour});
}

} // namespace

bool Is_DoubtfulEs(const EvaluatedSpot &spot, long long muf) {
    const double band = std::floor(static_cast<double>(spot.frequency));
    return spot.mode == QLatin1String("??") || muf > 250 || (band == 144 && muf >= 240) ||
           (band == 70 && muf >= 220) || (band == 50 && muf >= 200);
}

unsigned Selected_Panes(const EvaluatedSpot &spot) {
    const double f = spot.frequency;
    unsigned selected = 1U;
    if (f >= 30 && f <= 300) {
        selected |= 1U << 1;
    }
    if (f >= 144 && f <= 148) {
        selected |= 1U << 2;
    }
    if (spot.mode == QLatin1String("ES")) {
        selected |= 1U << 3;
    }
    return selected;
}

long long Round_Half_Up(double x) {
    const double whole = std::floor(x + 0.5);
    if (!std::isfinite(whole) || std::fabs(whole) >= LargestWhole) {
        throw RunTimeError(RunTimeError::Overflow);
    }
    return static_cast<long long>(whole);
}

void Print_MufField(EvaluatedSpot &spot) {
    const EsPath &path = *spot.es;
    const long long muf = Round_Half_Up(path.muf);
    FieldText text;
    text << QLatin1StringView(Is_DoubtfulEs(spot, muf) ? "Es? " : "    ")
         << QLatin1StringView("MUF=");
    text.padded3(muf) << QLatin1StringView("MHz");
    append(spot, text, fieldColour(path, muf >= 144));
}

void Print_MidSquare(EvaluatedSpot &spot) {
    const EsPath &path = *spot.es;
    const long long muf = Round_Half_Up(path.muf);
    FieldText text;
    text << QLatin1StringView("@") << QStringView(path.cloud).left(4) << QLatin1StringView(" ");
    append(spot, text, fieldColour(path, muf >= MinFrequency_MHz));
}

void Print_FotField(EvaluatedSpot &spot) {
    const EsPath &path = *spot.es;
    const long long ownMuf = Round_Half_Up(path.ownMuf);
    FieldText text;
    if (ownMuf > 0) {
        text << QLatin1StringView(" FOT=");
        text.padded3(ownMuf) << QLatin1StringView("MHz");
    } else {
        text << QLatin1StringView("           ");
    }
    append(spot, text, fieldColour(path, ownMuf >= 144));
}

void Print_AzField(EvaluatedSpot &spot) {
    const EsPath &path = *spot.es;
    if (path.ownKm < Distance_Limit) {
        const long long ownMuf = Round_Half_Up(path.ownMuf);
        const long long elevation = Round_Half_Up(path.elevation);
        FieldText text;
        text << QLatin1StringView(" -> ") << QStringView(path.far).left(4)
             << QLatin1StringView(" AZ=");
        text.padded3(Round_Half_Up(path.azimuth)) << QLatin1StringView(" EL=");
        text.padded3(elevation);
        append(spot, text, fieldColour(path, ownMuf >= 144 && elevation >= 0));
    }
    Print_LineEnd(spot);
}

void Print_LineEnd(EvaluatedSpot &spot) {
    spot.runs.append(TextRun{LineEnd, Color_Black});
}

} // namespace zkr
