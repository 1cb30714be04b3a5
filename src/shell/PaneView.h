#pragma once

#include "MemoryPane.h"
#include "Pane.h"

#include <QAbstractScrollArea>

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

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    const PaneLine &shownLine(std::int64_t index) const;
    void updateScrollBars();

    const MemoryPane *source_ = nullptr;
    MemoryPane own_;
    bool sourceHidden_ = false;
    std::uint64_t seenLinesAdded_ = 0;
};

} // namespace zkr
