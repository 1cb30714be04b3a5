#pragma once

#include "EsWatch.h"

#include <QDeadlineTimer>
#include <QWidget>

#include <array>

class QTimer;

namespace zkr {

// The "Es now" strip above the tabs: one line of plain text on the colour
// of the best cloud's level, elided to the width it is given (it never asks
// for more, so the window keeps its width). Alerts stay in front of it for
// AlertHoldMs, per band the highest level reached, 2 m before 4 m before
// 6 m: a 4 m alert does not hide a 2 m one.
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

    // Holds an alert, unless its band holds a higher level still.
    void showAlert(WatchLevel level, const QString &text);
    void updateText();

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    EsWatch &watch_;
    struct Held {
        WatchLevel level = WatchLevel::None;
        QString text;
        QDeadlineTimer until;
    };
    // Drops the alerts whose time is over; the timer waits for the next.
    void dropExpired();

    QString text_;
    std::array<Held, 3> held_; // by band: 6 m, 4 m, 2 m
    WatchLevel level_ = WatchLevel::None;
    QTimer *alertTimer_;
};

} // namespace zkr
