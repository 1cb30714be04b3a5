#include "MemoryPane.h"
#include "TestSpots.h"

#include <random>

using namespace zkr;

namespace {

// The plainest possible pane: one string and one colour per character.
struct ReferencePane {
    QString text;
    std::vector<std::uint32_t> colours;
    int caret = 0;

    void insert(const QString &piece, std::uint32_t colour) {
        text.insert(caret, piece);
        colours.insert(colours.begin() + caret, static_cast<std::size_t>(piece.size()), colour);
        caret += static_cast<int>(piece.size());
    }
};

// The committed lines against the reference. CR and LF carry no colour: once
// committed, a line end's colour is gone, even if a later print splits it.
void expectSameAsReference(const MemoryPane &pane, const ReferencePane &reference) {
    ASSERT_EQ(pane.text(), reference.text);
    ASSERT_EQ(pane.length(), reference.text.size());
    qsizetype offset = 0;
    for (std::int64_t i = 0; i < pane.lineCount(); ++i) {
        const PaneLine &line = pane.line(i);
        qsizetype inLine = 0;
        for (const ColourRun &run : line.runs) {
            ASSERT_GT(run.length, 0) << "line " << i;
            for (int k = 0; k < run.length; ++k, ++inLine) {
                const QChar c = line.text.at(inLine);
                if (c != u'\r' && c != u'\n') {
                    ASSERT_EQ(run.colour, reference.colours.at(std::size_t(offset + inLine)))
                        << "line " << i << " column " << inLine;
                }
            }
        }
        ASSERT_EQ(inLine, line.text.size()) << "runs do not cover line " << i;
        offset += line.text.size() + 2;
    }
}

TEST(MemoryPane, DropsTheOldestLinesBeyondItsLimit) {
    MemoryPane pane(3);
    for (int i = 0; i < 10; ++i) {
        pane.insertColored(QStringLiteral("spot %1\r\n").arg(i), static_cast<std::uint32_t>(i));
        pane.setCaret(0);
        pane.commit();
    }
    ASSERT_EQ(pane.lineCount(), 3);
    EXPECT_EQ(pane.text(), "spot 9\r\nspot 8\r\nspot 7\r\n");
    EXPECT_EQ(pane.line(2).runs.front().colour, 7u);
}

// Random prints at random carets (clamped at both ends), commits and clears
// against the plain reference: any slip in the line, run and length
// bookkeeping, also of pieces that join the committed line below them.
TEST(MemoryPane, AgreesWithAPlainTextModelUnderRandomUse) {
    std::mt19937 random(20261121);
    const QString pieces[] = {"DX", " ", "\r\n", "JO62", "a\r\nb", "\r\n\r\n", "<ES>", "x"};
    for (int round = 0; round < 200; ++round) {
        MemoryPane pane;
        ReferencePane reference;
        for (int step = 0; step < 60; ++step) {
            const int action = static_cast<int>(random() % 10);
            if (action < 6) {
                const QString &piece = pieces[random() % std::size(pieces)];
                const auto colour = static_cast<std::uint32_t>(random() % 3);
                pane.insertColored(piece, colour);
                reference.insert(piece, colour);
            } else if (action < 8) {
                const int caret = static_cast<int>(random() % (reference.text.size() + 6)) - 3;
                pane.setCaret(caret);
                reference.caret = std::clamp(caret, 0, static_cast<int>(reference.text.size()));
            } else if (action < 9) {
                pane.commit();
                ASSERT_NO_FATAL_FAILURE(expectSameAsReference(pane, reference)) << round;
            } else if (random() % 8 == 0) {
                pane.clear();
                reference = ReferencePane{};
            }
            ASSERT_EQ(pane.caret(), reference.caret) << "round " << round << " step " << step;
        }
        pane.commit();
        ASSERT_NO_FATAL_FAILURE(expectSameAsReference(pane, reference)) << "round " << round;
    }
}

} // namespace
