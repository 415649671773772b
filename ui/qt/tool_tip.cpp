// SPDX-License-Identifier: MIT
#include "ui/qt/tool_tip.h"

#include <QApplication>
#include <QPainter>
#include <QPointer>
#include <QScreen>
#include <QtMath>
#include <algorithm>

#include "ui/qt/grid.h"
#include "ui/qt/wrapped_text.h"

namespace tarnwick::qt {

namespace {

// Logical pixels.
constexpr int kPaddingX = 8;
constexpr int kPaddingY = 5;
constexpr int kCorner = 6;
/// Between the place and its tool tip.
constexpr int kGap = 4;
/// Of the text. A line that is longer wraps.
constexpr int kMostWidth = 420;
constexpr int kMostLines = 6;

constexpr Qt::WindowFlags kWindowKind = Qt::ToolTip | Qt::FramelessWindowHint |
                                        Qt::NoDropShadowWindowHint | Qt::WindowTransparentForInput;

class ToolTip final : public QWidget {
 public:
    ToolTip(QWidget& owner, const QRect& place, const QString& text, const Theme& theme)
        : QWidget(owner.window(), kWindowKind),
          owner_(&owner),
          place_(place),
          text_(text),
          theme_(theme) {
        setObjectName("toolTip");
        setAttribute(Qt::WA_ShowWithoutActivating);
        // The owner's window knows whether anything can be translucent.
        isRound_ = owner.window()->testAttribute(Qt::WA_TranslucentBackground);
        setAttribute(Qt::WA_TranslucentBackground, isRound_);
        setAccessibleName(text);
        for (const QString& line : text.split('\n')) {
            lines_ += wrapped(line, style(), kMostWidth, kMostLines);
        }
        qreal width = 0;
        for (const QString& line : lines_) {
            width = std::max(width, style().width(line));
        }
        resize(qCeil(width) + 2 * kPaddingX,
               static_cast<int>(lines_.size()) * style().lineHeight() + 2 * kPaddingY);
        move(position());
        qApp->installEventFilter(this);
    }

    const QString& text() const { return text_; }
    bool isFor(const QWidget& owner, const QRect& place) const {
        return owner_ == &owner && place_ == place;
    }

 protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        switch (event->type()) {
            case QEvent::MouseButtonPress:
            case QEvent::KeyPress:
            case QEvent::Wheel:
            case QEvent::WindowDeactivate:
                hideToolTip();
                break;
            case QEvent::Leave:
            case QEvent::Hide:
            case QEvent::Move:
                if (watched == owner_ || watched == parentWidget()) {
                    hideToolTip();
                }
                break;
            case QEvent::MouseMove:
                if (watched == owner_ && !place_.contains(owner_->mapFromGlobal(QCursor::pos()))) {
                    hideToolTip();
                }
                break;
            default:
                break;
        }
        return false;
    }
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        constexpr qreal half = grid::kHairline / 2.0;
        painter.setPen(QPen(theme_.color(ColorRole::hairline), grid::kHairline));
        painter.setBrush(theme_.color(ColorRole::card));
        const int corner = isRound_ ? kCorner : 0;
        painter.drawRoundedRect(QRectF(rect()).adjusted(half, half, -half, -half), corner, corner);
        int baseline = kPaddingY + style().ascent();
        for (const QString& line : lines_) {
            style().draw(painter, QPointF(kPaddingX, baseline), line,
                         theme_.color(ColorRole::text));
            baseline += style().lineHeight();
        }
    }

 private:
    const TextStyle& style() const { return theme_.style(FontRole::caption); }

    QPoint position() const {
        const QRect place(owner_->mapToGlobal(place_.topLeft()), place_.size());
        const QRect screen = owner_->screen()->availableGeometry();
        const int below = place.bottom() + 1 + kGap;
        const bool isRoom = below + height() <= screen.bottom() + 1;
        const int x = std::min(place.left(), screen.right() + 1 - width());
        return {std::max(x, screen.left()), isRoom ? below : place.top() - kGap - height()};
    }

    QPointer<QWidget> owner_;
    QRect place_;
    QString text_;
    QStringList lines_;
    const Theme& theme_;
    bool isRound_ = false;
};

/// Belongs to its owner's window, so it goes with that at the latest.
QPointer<ToolTip>& shown() {
    static QPointer<ToolTip> toolTip;
    return toolTip;
}

}  // namespace

void showToolTip(QWidget& owner, const QRect& place, const QString& text, const Theme& theme) {
    if (shown() && shown()->text() == text && shown()->isFor(owner, place)) {
        return;
    }
    hideToolTip();
    shown() = new ToolTip(owner, place, text, theme);
    shown()->show();
}

// Deleted later, because an event that hides it may be the tool tip's own.
void hideToolTip() {
    if (ToolTip* toolTip = shown()) {
        shown().clear();
        qApp->removeEventFilter(toolTip);
        toolTip->hide();
        toolTip->deleteLater();
    }
}

QString shownToolTip() {
    return shown() ? shown()->text() : QString();
}

}  // namespace tarnwick::qt
