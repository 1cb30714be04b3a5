#pragma once

#include "MemoryPane.h"
#include "Pane.h"

#include <QAbstractScrollArea>
#include <QElapsedTimer>
#include <QHash>
#include <QStaticText>

class QTimer;

#include <vector>

namespace zkr {

// A result pane on screen. It shows the committed lines of a working pane
// (committing is the moment a spot becomes visible, so a half-printed spot
// never shows) and paints only the lines in sight, so a pane with a day of
// spots costs no more per spot than an empty one. What is printed straight
// into the view (the cluster prompt, a web server failure) shows above the
// working pane's lines until the next refresh().
class PaneView : public QAbstractScrollArea, public Pane {
    Q_OBJECT
public:
    explicit PaneView(QWidget *parent = nullptr);

    // The working pane shown; not owned, may be null.
    void setSource(const MemoryPane *source);
    const MemoryPane *source() const { return source_; }
    // Repaints with the working pane's current lines and drops what was
    // printed straight into the view.
    void refresh();

    // Repaints come at most this often; a burst of spots (a replayed file)
    // is painted frame by frame instead of spot by spot.
    static constexpr int FrameMs = 40;
    // Columns of a line that can be scrolled to and are laid out; the rest
    // of an absurdly long line (a megabyte from a broken node) stays unseen.
    static constexpr qsizetype MaxShownColumns = 100000;
    // A run of text as painted: one row, read left to right, whatever it
    // holds. Characters that would move, reorder or hide text (controls,
    // direction overrides, zero-width and separator characters, half
    // surrogate pairs) show as a middle dot.
    static QString shownText(QStringView text);

    // Pane: prints straight into the view.
    void insertColored(QStringView text, std::uint32_t colour) override;
    int caret() const override { return own_.caret(); }
    void setCaret(int position) override { own_.setCaret(position); }
    // Empties the view until the next refresh.
    void clear() override;

    // Everything the view shows, lines ended by CR LF.
    QString text() const;
    std::int64_t shownLineCount() const;
    int firstShownLine() const;

    // Marks line `index` of the working pane (0 the top) as selected and
    // scrolls it into sight; the mark stays on that line as new lines come
    // on top. selectedLine() is its index now, or -1.
    void selectLine(std::int64_t index);
    std::int64_t selectedLine() const;

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    // A line's runs laid out once: when a spot arrives every line moves one
    // row down, and only the new one needs its text shaped.
    struct ShapedLine {
        QString text; // held, so the key below stays this line's
        QList<ColourRun> runs;
        std::vector<QStaticText> pieces;
    };
    const ShapedLine &shaped(const PaneLine &line);

    const PaneLine &shownLine(std::int64_t index) const;
    void updateScrollBars();
    void repaintSoon();
    void showFrame();

    const MemoryPane *source_ = nullptr;
    MemoryPane own_;
    bool sourceHidden_ = false;
    std::uint64_t seenLinesAdded_ = 0;
    // The selected line as the count of lines added on top when it came;
    // 0 for none.
    std::uint64_t selectedId_ = 0;
    QHash<const QChar *, ShapedLine> shapedLines_;
    QElapsedTimer sinceFrame_;
    bool scrollBarsStale_ = false;
    QTimer *frameTimer_;
};

} // namespace zkr
