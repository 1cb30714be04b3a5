#pragma once

#include <QLabel>

namespace zkr {

// A one-line plain-text label that gives up width instead of claiming it:
// a long status ends in "…" and the whole text is in the tooltip, so that
// the window fits a small screen.
class ElidedLabel : public QLabel {
    Q_OBJECT
public:
    explicit ElidedLabel(QWidget *parent = nullptr);

    // Sets the text and the tooltip that carries it whole.
    void setFullText(const QString &text);

    QSize minimumSizeHint() const override;
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
};

} // namespace zkr
