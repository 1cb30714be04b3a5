#pragma once

#include "Pane.h"

#include <QList>
#include <QString>

#include <cstdint>
#include <deque>
#include <vector>

namespace zkr {

// A run of equally coloured characters within a line.
struct ColourRun {
    std::int32_t length;
    std::uint32_t colour; // &H00BBGGRR

    friend bool operator==(const ColourRun &, const ColourRun &) = default;
};

// One line of a pane, without its line end. A spot's line goes into up to
// four panes: equal lines share one text and one run list (both implicitly
// shared), which keeps a day of spots small.
struct PaneLine {
    QString text;
    QList<ColourRun> runs;
};

// An output pane kept in memory, built for a program that prints every spot
// at the top of a pane for days: text printed since the last commit() is kept
// in a small block of its own, and commit() moves it in front of the lines
// already committed. So a spot costs the same whether the pane holds ten
// lines or a hundred thousand, and a view that shows only committed lines
// never shows a half-printed spot. The oldest lines beyond maxLines are
// dropped at commit.
//
// The text is the block followed by the committed lines, each ended by
// CR LF (the last one possibly without). The caret is an offset into it.
// Line ends carry no colour of their own.
class MemoryPane : public Pane {
public:
    static constexpr std::int64_t DefaultMaxLines = 100000;

    MemoryPane() : MemoryPane(DefaultMaxLines) {}
    explicit MemoryPane(std::int64_t maxLines);

    void insertColored(QStringView text, std::uint32_t colour) override;
    int caret() const override { return caret_; }
    void setCaret(int position) override;
    void clear() override;

    // Moves the text printed since the last commit into the committed lines.
    void commit();
    bool hasUncommitted() const { return !block_.isEmpty(); }

    std::int64_t lineCount() const { return static_cast<std::int64_t>(lines_.size()); }
    // Committed line `index`, 0 being the top.
    const PaneLine &line(std::int64_t index) const {
        return lines_[static_cast<std::size_t>(index)];
    }
    std::int64_t maxLines() const { return maxLines_; }
    // Counts every change of the committed lines, for views.
    std::uint64_t revision() const { return revision_; }
    // Lines ever put on top since the last clear: a view scrolled down to
    // older lines moves by the difference to keep showing them.
    std::uint64_t linesAddedOnTop() const { return linesAddedOnTop_; }
    // The longest committed line seen since the last clear, in characters.
    qsizetype longestLine() const { return longestLine_; }

    // The whole text, uncommitted block included.
    QString text() const;
    std::int64_t length() const { return block_.size() + committedLength_; }

private:
    // Moves committed lines back into the block until `offset` (into the
    // whole text) lies inside the block.
    void uncommitThrough(std::int64_t offset);
    void dropOldestLines();

    QString block_;
    QList<ColourRun> blockRuns_;
    std::deque<PaneLine> lines_;
    bool lastLineEnded_ = true; // the bottom line ends with CR LF
    std::int64_t committedLength_ = 0;
    std::int64_t maxLines_;
    int caret_ = 0;
    std::uint64_t revision_ = 0;
    std::uint64_t linesAddedOnTop_ = 0;
    qsizetype longestLine_ = 0;
};

} // namespace zkr
