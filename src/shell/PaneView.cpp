#include "PaneView.h"

#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>

namespace zkr {

namespace {

QColor fromBgr(std::uint32_t bgr) {
    return QColor(static_cast<int>(bgr & 0xFF), static_cast<int>((bgr >> 8) & 0xFF),
                  static_cast<int>((bgr >> 16) & 0xFF));
}

// Text from the network is shown as it is, but control characters (a stray
// CR, bells, NULs) must neither move the text nor reach the painter.
QString printable(QStringView text) {
    QString shown = text.toString();
    for (QChar &c : shown) {
        if (c.unicode() < 0x20 || c.unicode() == 0x7F ||
            (c.unicode() >= 0x80 && c.unicode() < 0xA0)) {
            c = QChar(0xB7);
        }
    }
    return shown;
}

} // namespace

PaneView::PaneView(QWidget *parent) : QAbstractScrollArea(parent) {
    setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    viewport()->setBackgroundRole(QPalette::Base);
    viewport()->setAutoFillBackground(true);
    setFocusPolicy(Qt::StrongFocus);
}

void PaneView::setSource(const MemoryPane *source) {
    source_ = source;
    refresh();
}

void PaneView::refresh() {
    own_.clear();
    sourceHidden_ = false;
    if (source_ != nullptr) {
        // Keep a reader who scrolled down to older spots on the same spots;
        // after the source was cleared its count starts again.
        const std::uint64_t added = source_->linesAddedOnTop();
        const std::uint64_t shift = added >= seenLinesAdded_ ? added - seenLinesAdded_ : 0;
        seenLinesAdded_ = added;
        QScrollBar *bar = verticalScrollBar();
        const int value = bar->value();
        updateScrollBars();
        if (value > 0) {
            bar->setValue(static_cast<int>(std::min<std::uint64_t>(value + shift, 1u << 30)));
        }
    } else {
        updateScrollBars();
    }
    viewport()->update();
}

void PaneView::insertColored(QStringView text, std::uint32_t colour) {
    own_.insertColored(text, colour);
    own_.commit();
    updateScrollBars();
    viewport()->update();
}

void PaneView::clear() {
    own_.clear();
    sourceHidden_ = true;
    updateScrollBars();
    viewport()->update();
}

std::int64_t PaneView::shownLineCount() const {
    const std::int64_t fromSource =
        (source_ != nullptr && !sourceHidden_) ? source_->lineCount() : 0;
    return own_.lineCount() + fromSource;
}

int PaneView::firstShownLine() const {
    return verticalScrollBar()->value();
}

const PaneLine &PaneView::shownLine(std::int64_t index) const {
    if (index < own_.lineCount()) {
        return own_.line(index);
    }
    return source_->line(index - own_.lineCount());
}

QString PaneView::text() const {
    QString all;
    const std::int64_t count = shownLineCount();
    for (std::int64_t i = 0; i < count; ++i) {
        all += shownLine(i).text;
        all += QStringLiteral("\r\n");
    }
    return all;
}

void PaneView::updateScrollBars() {
    const QFontMetrics metrics(font());
    const int lineHeight = std::max(metrics.lineSpacing(), 1);
    const int visibleLines = std::max(viewport()->height() / lineHeight, 1);
    const std::int64_t count = shownLineCount();
    QScrollBar *vertical = verticalScrollBar();
    vertical->setRange(
        0, static_cast<int>(std::clamp<std::int64_t>(count - visibleLines, 0, 1 << 30)));
    vertical->setPageStep(visibleLines);
    vertical->setSingleStep(1);

    qsizetype longest = own_.longestLine();
    if (source_ != nullptr && !sourceHidden_) {
        longest = std::max(longest, source_->longestLine());
    }
    const int charWidth = std::max(metrics.horizontalAdvance(QLatin1Char('M')), 1);
    const qsizetype width = std::min<qsizetype>(longest, 100000) * charWidth + 2 * charWidth;
    QScrollBar *horizontal = horizontalScrollBar();
    horizontal->setRange(0, std::max(0, static_cast<int>(width) - viewport()->width()));
    horizontal->setPageStep(viewport()->width());
    horizontal->setSingleStep(charWidth);
}

void PaneView::paintEvent(QPaintEvent *) {
    QPainter painter(viewport());
    const QFontMetrics metrics(font());
    const int lineHeight = std::max(metrics.lineSpacing(), 1);
    const int first = verticalScrollBar()->value();
    const int x0 = 2 - horizontalScrollBar()->value();
    const std::int64_t count = shownLineCount();
    const int rows = viewport()->height() / lineHeight + 1;
    for (int row = 0; row < rows && first + row < count; ++row) {
        const PaneLine &line = shownLine(first + row);
        int x = x0;
        const int baseline = row * lineHeight + metrics.ascent();
        qsizetype at = 0;
        for (const ColourRun &run : line.runs) {
            const QString piece = printable(QStringView(line.text).mid(at, run.length));
            painter.setPen(fromBgr(run.colour));
            painter.drawText(x, baseline, piece);
            x += metrics.horizontalAdvance(piece);
            at += run.length;
            if (x > viewport()->width()) {
                break;
            }
        }
    }
}

void PaneView::resizeEvent(QResizeEvent *event) {
    QAbstractScrollArea::resizeEvent(event);
    updateScrollBars();
}

void PaneView::changeEvent(QEvent *event) {
    QAbstractScrollArea::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        updateScrollBars();
        viewport()->update();
    }
}

} // namespace zkr
