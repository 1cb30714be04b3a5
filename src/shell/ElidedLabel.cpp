#include "ElidedLabel.h"

#include <QPainter>
#include <QStyle>

namespace zkr {

ElidedLabel::ElidedLabel(QWidget *parent) : QLabel(parent) {
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
}

void ElidedLabel::setFullText(const QString &text) {
    setText(text);
    setToolTip(text);
}

QSize ElidedLabel::minimumSizeHint() const {
    const QSize full = QLabel::minimumSizeHint();
    return {fontMetrics().horizontalAdvance(QStringLiteral("Xxxxxxxx…")) + 2 * margin(),
            full.height()};
}

QSize ElidedLabel::sizeHint() const {
    return QLabel::sizeHint();
}

void ElidedLabel::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    drawFrame(&painter);
    const QRect area = contentsRect().adjusted(margin(), margin(), -margin(), -margin());
    const QString shown = fontMetrics().elidedText(text(), Qt::ElideRight, area.width());
    style()->drawItemText(&painter, area, static_cast<int>(alignment()), palette(), isEnabled(),
                          shown, foregroundRole());
}

} // namespace zkr
