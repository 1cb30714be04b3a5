#include "EsNowStrip.h"

#include <QPainter>
#include <QTimer>

namespace zkr {

namespace {

QColor rgb(std::uint32_t value) {
    return QColor::fromRgb(static_cast<QRgb>(value));
}

} // namespace

EsNowStrip::EsNowStrip(EsWatch &watch, QWidget *parent)
    : QWidget(parent), watch_(watch), alertTimer_(new QTimer(this)) {
    setObjectName(QStringLiteral("EsNowStrip"));
    alertTimer_->setSingleShot(true);
    connect(alertTimer_, &QTimer::timeout, this, [this] {
        dropExpired();
        updateText();
    });
    connect(&watch_, &EsWatch::cloudsChanged, this, &EsNowStrip::updateText);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    updateText();
}

std::uint32_t EsNowStrip::levelColour(WatchLevel level) {
    switch (level) {
    case WatchLevel::None:
        return 0xE8E8E8;
    case WatchLevel::Open50:
    case WatchLevel::Confirmed50:
        return 0xB8E8B0;
    case WatchLevel::Open70:
    case WatchLevel::Confirmed70:
        return 0xE0F0A0;
    case WatchLevel::Rising:
        return 0xFFC070;
    case WatchLevel::Open144:
        return 0xFF90FF;
    case WatchLevel::Confirmed144:
        return 0xC000C0;
    }
    return 0xE8E8E8;
}

std::uint32_t EsNowStrip::background() const {
    return levelColour(level_);
}

void EsNowStrip::showAlert(WatchLevel level, const QString &text) {
    dropExpired();
    const int band = EsWatch::bandOf(level);
    if (band < 0) {
        return;
    }
    Held &held = held_[static_cast<std::size_t>(band)];
    if (held.level > level) {
        return;
    }
    held = {level, text, QDeadlineTimer(AlertHoldMs)};
    dropExpired();
    updateText();
}

void EsNowStrip::dropExpired() {
    qint64 next = -1;
    for (Held &held : held_) {
        if (held.level == WatchLevel::None) {
            continue;
        }
        if (held.until.hasExpired()) {
            held = Held();
        } else if (next < 0 || held.until.remainingTime() < next) {
            next = held.until.remainingTime();
        }
    }
    if (next >= 0) {
        alertTimer_->start(static_cast<int>(next) + 1);
    }
}

void EsNowStrip::updateText() {
    const WatchCloud *best = watch_.bestCloud();
    level_ = best != nullptr ? best->level : WatchLevel::None;
    QString text = QStringLiteral("Es now: ") + EsWatch::describe(best, watch_.now());
    // In the strip an alert is its level and cloud (the rest is in the
    // notification and the tooltip), so that "Es now" keeps its room.
    QStringList alerts, whole;
    for (auto held = held_.rbegin(); held != held_.rend(); ++held) {
        if (held->level != WatchLevel::None) {
            alerts.append(held->text.section(QStringLiteral(" FOT="), 0, 0));
            whole.append(held->text);
        }
    }
    if (!alerts.isEmpty()) {
        text = QStringLiteral("ALERT ") + alerts.join(QStringLiteral(", ")) +
               QStringLiteral("  |  ") + text;
    }
    if (text != text_) {
        text_ = text;
        // Rich text with everything escaped: a call like <PJ4/K1ABC> shows.
        whole.append(text.section(QStringLiteral("  |  "), -1));
        setToolTip(QStringLiteral("<p style='white-space:pre'>") +
                   whole.join(QLatin1Char('\n')).toHtmlEscaped() + QStringLiteral("</p>"));
        update();
    }
}

QSize EsNowStrip::sizeHint() const {
    return QSize(200, fontMetrics().height() + 8);
}

QSize EsNowStrip::minimumSizeHint() const {
    return QSize(0, fontMetrics().height() + 8);
}

void EsNowStrip::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.fillRect(rect(), rgb(background()));
    painter.setPen(level_ == WatchLevel::Confirmed144 ? Qt::white : Qt::black);
    const QRect inner = rect().adjusted(6, 0, -6, 0);
    // Drawn as plain text: the squares and numbers come from the network.
    const QString shown = fontMetrics().elidedText(text_, Qt::ElideRight, inner.width());
    painter.drawText(inner, Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine, shown);
}

} // namespace zkr
