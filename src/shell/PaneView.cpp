#include "PaneView.h"

#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>
#include <QTimer>

#include <algorithm>

namespace zkr {

namespace {

QColor fromBgr(std::uint32_t bgr) {
    return QColor(static_cast<int>(bgr & 0xFF), static_cast<int>((bgr >> 8) & 0xFF),
                  static_cast<int>((bgr >> 16) & 0xFF));
}

} // namespace

QString PaneView::shownText(QStringView text) {
    QString shown = text.left(MaxShownColumns).toString();
    for (qsizetype i = 0; i < shown.size(); ++i) {
        QChar &c = shown[i];
        // A surrogate pair is one character and shows as such.
        if (c.isHighSurrogate() && i + 1 < shown.size() && shown[i + 1].isLowSurrogate()) {
            ++i;
            continue;
        }
        switch (c.category()) {
        case QChar::Other_Control:   // CR, LF, tab, bells, NULs, C1 codes
        case QChar::Other_Format:    // direction overrides, zero-width characters
        case QChar::Other_Surrogate: // half a pair: no character at all
        case QChar::Separator_Line:  // would start a new row
        case QChar::Separator_Paragraph:
            c = QChar(0xB7);
            break;
        default:
            break;
        }
    }
    return shown;
}

PaneView::PaneView(QWidget *parent) : QAbstractScrollArea(parent), frameTimer_(new QTimer(this)) {
    frameTimer_->setSingleShot(true);
    connect(frameTimer_, &QTimer::timeout, this, &PaneView::showFrame);
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
        if (value > 0 && shift > 0) {
            updateScrollBars();
            bar->setValue(static_cast<int>(std::min<std::uint64_t>(value + shift, 1u << 30)));
        }
    }
    // Ranges follow with the next frame: a new spot on top needs no more.
    scrollBarsStale_ = true;
    repaintSoon();
}

void PaneView::repaintSoon() {
    if (frameTimer_->isActive()) {
        return;
    }
    const qint64 since = sinceFrame_.isValid() ? sinceFrame_.elapsed() : FrameMs;
    if (since >= FrameMs) {
        showFrame();
    } else {
        frameTimer_->start(static_cast<int>(FrameMs - since));
    }
}

void PaneView::showFrame() {
    sinceFrame_.start();
    if (scrollBarsStale_) {
        scrollBarsStale_ = false;
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

void PaneView::selectLine(std::int64_t index) {
    if (source_ == nullptr || index < 0 || index >= source_->lineCount()) {
        selectedId_ = 0;
        viewport()->update();
        return;
    }
    selectedId_ = source_->linesAddedOnTop() - static_cast<std::uint64_t>(index);
    updateScrollBars();
    const std::int64_t row = own_.lineCount() + index;
    QScrollBar *bar = verticalScrollBar();
    if (row < bar->value() || row >= bar->value() + bar->pageStep()) {
        bar->setValue(static_cast<int>(std::max<std::int64_t>(row - bar->pageStep() / 2, 0)));
    }
    viewport()->update();
}

std::int64_t PaneView::selectedLine() const {
    if (source_ == nullptr || selectedId_ == 0 || source_->linesAddedOnTop() < selectedId_) {
        return -1;
    }
    const auto index = static_cast<std::int64_t>(source_->linesAddedOnTop() - selectedId_);
    return index < source_->lineCount() ? index : -1;
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
    const qsizetype width = std::min(longest, MaxShownColumns) * charWidth + 2 * charWidth;
    QScrollBar *horizontal = horizontalScrollBar();
    horizontal->setRange(0, std::max(0, static_cast<int>(width) - viewport()->width()));
    horizontal->setPageStep(viewport()->width());
    horizontal->setSingleStep(charWidth);
}

const PaneView::ShapedLine &PaneView::shaped(const PaneLine &line) {
    auto found = shapedLines_.find(line.text.constData());
    if (found != shapedLines_.end() && found->runs == line.runs) {
        return *found;
    }
    if (shapedLines_.size() > 2048) {
        shapedLines_.clear(); // rebuilt from the lines in sight
    }
    ShapedLine entry{line.text, line.runs, {}};
    qsizetype at = 0;
    for (const ColourRun &run : line.runs) {
        if (at >= MaxShownColumns) {
            break;
        }
        QStaticText piece(shownText(
            QStringView(line.text).mid(at, std::min<qsizetype>(run.length, MaxShownColumns - at))));
        piece.setTextFormat(Qt::PlainText);
        piece.setPerformanceHint(QStaticText::AggressiveCaching);
        piece.prepare(QTransform(), font());
        entry.pieces.push_back(std::move(piece));
        at += run.length;
    }
    return *shapedLines_.insert(line.text.constData(), std::move(entry));
}

void PaneView::paintEvent(QPaintEvent *) {
    QPainter painter(viewport());
    painter.setFont(font());
    const QFontMetrics metrics(font());
    const int lineHeight = std::max(metrics.lineSpacing(), 1);
    const int first = verticalScrollBar()->value();
    const int x0 = 2 - horizontalScrollBar()->value();
    const std::int64_t count = shownLineCount();
    const int rows = viewport()->height() / lineHeight + 1;
    const std::int64_t selected = selectedLine();
    if (selected >= 0 && !sourceHidden_) {
        const std::int64_t row = own_.lineCount() + selected - first;
        if (row >= 0 && row < rows) {
            painter.fillRect(
                QRect(0, static_cast<int>(row) * lineHeight, viewport()->width(), lineHeight),
                palette().color(QPalette::Highlight).lighter(160));
        }
    }
    for (int row = 0; row < rows && first + row < count; ++row) {
        const ShapedLine &line = shaped(shownLine(first + row));
        double x = x0;
        for (std::size_t i = 0; i < line.pieces.size() && x <= viewport()->width(); ++i) {
            painter.setPen(fromBgr(line.runs.at(static_cast<qsizetype>(i)).colour));
            painter.drawStaticText(QPointF(x, row * lineHeight), line.pieces[i]);
            x += line.pieces[i].size().width();
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
        shapedLines_.clear();
        updateScrollBars();
        viewport()->update();
    }
}

} // namespace zkr
