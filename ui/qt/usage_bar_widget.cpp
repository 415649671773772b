#include "ui/qt/usage_bar_widget.h"

#include <QPainter>
#include <QPainterPath>

#include "ui/qt/grid.h"
#include "ui/qt/row_content.h"

namespace tarnwick::qt {

namespace {

void paintBar(QPainter& painter, const UsageBar& bar, const Theme& theme, const QRectF& rect) {
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    QPainterPath track;
    track.addRoundedRect(rect, grid::kBarCorner, grid::kBarCorner);
    painter.fillPath(track, theme.color(ColorRole::track));
    const qreal filled = rect.width() * bar.fraction();
    if (filled <= 0) {
        return;
    }
    // Too short for round ends of its own, the fill takes the shape of the track's end.
    QPainterPath fill;
    fill.addRoundedRect(
        filled < 2 * grid::kBarCorner
            ? QRectF(rect.left() + filled - rect.width(), rect.top(), rect.width(), rect.height())
            : QRectF(rect.left(), rect.top(), filled, rect.height()),
        grid::kBarCorner, grid::kBarCorner);
    painter.fillPath(filled < 2 * grid::kBarCorner ? fill.intersected(track) : fill,
                     theme.color(bar.tint));
}

}  // namespace

int UsageBarWidget::heightFor(int) const {
    return rowHeight(rowContent(value(), theme()), theme()) + grid::kBarGap + grid::kBarHeight;
}

void UsageBarWidget::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const RowContent row = rowContent(value(), theme());
    paintRow(painter, row, theme(), QRect(0, 0, width(), rowHeight(row, theme())));
    paintBar(painter, value(), theme(),
             QRectF(0, height() - grid::kBarHeight, width(), grid::kBarHeight));
}

QString UsageBarWidget::cutTextAt(const QPoint&) const {
    return cutText(rowContent(value(), theme()), theme(), width());
}

}  // namespace tarnwick::qt
