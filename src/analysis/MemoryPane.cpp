#include "MemoryPane.h"

#include <algorithm>
#include <array>
#include <limits>

namespace zkr {

namespace {

const QString LineEnd = QStringLiteral("\r\n");

// Inserts a run of `length` characters at `offset` into `runs`, splitting the
// run it falls into, and merges it with equally coloured neighbours.
void insertRun(QList<ColourRun> &runs, std::int64_t offset, std::int64_t total, std::int32_t length,
               std::uint32_t colour) {
    if (offset == total) {
        // Printing at the end, as a page does line by line: no walk.
        if (!runs.empty() && runs.back().colour == colour) {
            runs.back().length += length;
        } else {
            runs.push_back(ColourRun{length, colour});
        }
        return;
    }
    qsizetype i = 0;
    std::int64_t start = 0;
    while (i < runs.size() && start + runs[i].length <= offset) {
        start += runs[i].length;
        ++i;
    }
    if (i < runs.size() && offset > start) {
        const std::int32_t head = static_cast<std::int32_t>(offset - start);
        if (runs[i].colour == colour) {
            runs[i].length += length;
            return;
        }
        const ColourRun tail{runs[i].length - head, runs[i].colour};
        runs[i].length = head;
        runs.insert(i + 1, tail);
        runs.insert(i + 1, ColourRun{length, colour});
        return;
    }
    if (i > 0 && runs[i - 1].colour == colour) {
        runs[i - 1].length += length;
    } else if (i < runs.size() && runs[i].colour == colour) {
        runs[i].length += length;
    } else {
        runs.insert(i, ColourRun{length, colour});
    }
}

// Reads a run list from the front, a given number of characters at a time,
// without moving what is left: a block of a whole web page has as many runs
// as lines.
class RunReader {
public:
    explicit RunReader(const QList<ColourRun> &runs) : runs_(runs) {}

    QList<ColourRun> take(std::int64_t count) {
        QList<ColourRun> taken;
        while (count > 0 && index_ < runs_.size()) {
            const std::int64_t left = runs_[index_].length - used_;
            const std::int64_t part = std::min(left, count);
            taken.push_back({static_cast<std::int32_t>(part), runs_[index_].colour});
            count -= part;
            used_ += part;
            if (used_ == runs_[index_].length) {
                ++index_;
                used_ = 0;
            }
        }
        return taken;
    }
    // What has not been taken.
    QList<ColourRun> rest() { return take(std::numeric_limits<std::int64_t>::max()); }

private:
    const QList<ColourRun> &runs_;
    qsizetype index_ = 0;
    std::int64_t used_ = 0;
};

void appendRuns(QList<ColourRun> &to, const QList<ColourRun> &from) {
    for (const ColourRun &run : from) {
        if (run.length <= 0) {
            continue;
        }
        if (!to.empty() && to.back().colour == run.colour) {
            to.back().length += run.length;
        } else {
            to.push_back(run);
        }
    }
}

// Gives `line` the text and runs of an equal line committed a moment ago in
// another pane, so that they share one copy.
void shareWithRecent(PaneLine &line) {
    static thread_local std::array<PaneLine, 8> recent;
    static thread_local std::size_t next = 0;
    for (const PaneLine &seen : recent) {
        if (seen.text.size() == line.text.size() && seen.text == line.text &&
            seen.runs == line.runs) {
            line = seen;
            return;
        }
    }
    line.text.squeeze();
    line.runs.squeeze();
    recent[next] = line;
    next = (next + 1) % recent.size();
}

} // namespace

MemoryPane::MemoryPane(std::int64_t maxLines) : maxLines_(std::max<std::int64_t>(maxLines, 1)) {}

void MemoryPane::setCaret(int position) {
    const std::int64_t clamped = std::clamp<std::int64_t>(position, 0, length());
    caret_ = static_cast<int>(std::min<std::int64_t>(clamped, std::numeric_limits<int>::max()));
}

void MemoryPane::insertColored(QStringView text, std::uint32_t colour) {
    if (text.isEmpty()) {
        return;
    }
    if (caret_ > block_.size()) {
        uncommitThrough(caret_);
    }
    insertRun(blockRuns_, caret_, block_.size(), static_cast<std::int32_t>(text.size()), colour);
    block_.insert(caret_, text);
    setCaret(static_cast<int>(caret_ + text.size()));
}

void MemoryPane::clear() {
    block_.clear();
    blockRuns_.clear();
    lines_.clear();
    lastLineEnded_ = true;
    committedLength_ = 0;
    caret_ = 0;
    linesAddedOnTop_ = 0;
    longestLine_ = 0;
    ++revision_;
}

void MemoryPane::commit() {
    if (block_.isEmpty()) {
        return;
    }
    // Complete lines of the block go on top in their order; a last piece
    // without line end joins the front of the line that was on top.
    std::vector<PaneLine> complete;
    RunReader runs(blockRuns_);
    qsizetype from = 0;
    for (qsizetype end = block_.indexOf(LineEnd); end >= 0; end = block_.indexOf(LineEnd, from)) {
        PaneLine line;
        line.text = block_.mid(from, end - from);
        line.runs = runs.take(end - from);
        runs.take(LineEnd.size());
        complete.push_back(std::move(line));
        from = end + LineEnd.size();
    }
    if (from < block_.size()) {
        const QString rest = block_.mid(from);
        if (lines_.empty()) {
            lines_.push_front(PaneLine{rest, runs.rest()});
            lastLineEnded_ = false;
        } else {
            PaneLine &top = lines_.front();
            top.text.prepend(rest);
            top.text.squeeze();
            QList<ColourRun> joined = runs.rest();
            appendRuns(joined, top.runs);
            top.runs = std::move(joined);
        }
    }
    if (!lines_.empty()) {
        longestLine_ = std::max(longestLine_, lines_.front().text.size());
    }
    for (auto it = complete.rbegin(); it != complete.rend(); ++it) {
        shareWithRecent(*it);
        longestLine_ = std::max(longestLine_, it->text.size());
        lines_.push_front(std::move(*it));
    }
    linesAddedOnTop_ += complete.size();
    committedLength_ += block_.size();
    block_.clear();
    blockRuns_.clear();
    dropOldestLines();
    ++revision_;
}

void MemoryPane::dropOldestLines() {
    while (static_cast<std::int64_t>(lines_.size()) > maxLines_) {
        committedLength_ -= lines_.back().text.size() + (lastLineEnded_ ? LineEnd.size() : 0);
        lines_.pop_back();
        lastLineEnded_ = true;
    }
    setCaret(caret_);
}

void MemoryPane::uncommitThrough(std::int64_t offset) {
    // Rare: printing below the newest block. Bring the lines above the
    // offset back into the block, so the insert itself stays simple.
    while (offset > block_.size() && !lines_.empty()) {
        PaneLine top = std::move(lines_.front());
        lines_.pop_front();
        if (linesAddedOnTop_ > 0) {
            --linesAddedOnTop_;
        }
        const bool ended = !lines_.empty() || lastLineEnded_;
        if (lines_.empty()) {
            lastLineEnded_ = true;
        }
        const qsizetype size = top.text.size() + (ended ? LineEnd.size() : 0);
        block_ += top.text;
        appendRuns(blockRuns_, top.runs);
        if (ended) {
            block_ += LineEnd;
            // Line ends are part of the block's runs; their colour never shows.
            appendRuns(blockRuns_, {ColourRun{static_cast<std::int32_t>(LineEnd.size()), 0}});
        }
        committedLength_ -= size;
    }
    ++revision_;
}

QString MemoryPane::text() const {
    QString all = block_;
    all.reserve(static_cast<qsizetype>(length()));
    for (std::size_t i = 0; i < lines_.size(); ++i) {
        all += lines_[i].text;
        if (i + 1 < lines_.size() || lastLineEnded_) {
            all += LineEnd;
        }
    }
    return all;
}

} // namespace zkr
