#pragma once

#include "EsWatch.h"

#include <QWidget>

class QTimer;

namespace zkr {

// The "Es now" strip above the tabs: one line of plain text on the colour
// of the best cloud's level, elided to the width it is given (it never asks
// for more, so the window keeps its width). An alert the desktop could not
// show stays in the strip for AlertHoldMs.
class EsNowStrip : public QWidget {
    Q_OBJECT
public:
    static constexpr int AlertHoldMs = 2 * 60 * 1000;

    explicit EsNowStrip(EsWatch &watch, QWidget *parent = nullptr);

    // The full text (before eliding) and the background shown, 0xRRGGBB.
    QString text() const { return text_; }
    std::uint32_t background() const;
    // Background colour of a level; white text on the darkest.
    static std::uint32_t levelColour(WatchLevel level);

    // An alert the desktop did not show.
    void showAlert(const QString &text);
    void updateText();

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    EsWatch &watch_;
    QString text_;
    QString alert_;
    WatchLevel level_ = WatchLevel::None;
    QTimer *alertTimer_;
};

} // namespace zkr
