// SPDX-License-Identifier: MIT
#include "ui/qt/trend_row_widget.h"

#include <QPainter>
#include <QPolygonF>
#include <QtMath>
#include <algorithm>

#include "core/records/percentage.h"
#include "ui/qt/device_pixels.h"
#include "ui/qt/grid.h"
#include "ui/qt/row_content.h"
#include "ui/qt/symbols.h"

namespace tarnwick::qt {

namespace {

/// Less than half the space between two rows.
constexpr int kOverhang = 5;

}  // namespace

int TrendRowWidget::textHeight() const {
    return theme().style(FontRole::caption).lineHeight() + TrendRow::kTextSpacing +
           theme().style(FontRole::captionMedium).lineHeight();
}

QSize TrendRowWidget::sparklineSize() const {
    return {theme().scaled(TrendRow::kSparklineWidth), theme().scaled(TrendRow::kSparklineHeight)};
}

qreal TrendRowWidget::textRoom() const {
    return width() - sparklineSize().width() - TrendRow::kSpacing;
}

int TrendRowWidget::heightFor(int) const {
    return std::max(sparklineSize().height(), textHeight());
}

// Two neighbouring rows share the space between them, so that a repaint of one does not repaint the
// other. The tip of the steepest possible peak reaches six pixels beyond its frame. The sixth pixel
// may be cut, if the fonts are so small that the frame is as high as the row, but nothing can be
// seen of it.
int TrendRowWidget::overhang() const {
    return kOverhang;
}

std::optional<double> TrendRowWidget::accessibleValue() const {
    if (value().values.empty()) {
        return std::nullopt;
    }
    return clampedPercentage(value().values.back());
}

void TrendRowWidget::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const TextStyle& title = theme().style(FontRole::caption);
    const TextStyle& figure = theme().style(FontRole::captionMedium);
    const int top = (height() - textHeight()) / 2;
    title.draw(painter, QPointF(0, top + title.ascent()),
               title.elided(QString::fromStdString(value().title), textRoom()),
               theme().color(ColorRole::secondaryText));
    const auto mark = levelMarkSymbol(value().color, theme());
    const qreal markRoom = mark ? mark->size + grid::kMarkGap : 0;
    const QString text =
        figure.elided(QString::fromStdString(value().value), textRoom() - markRoom);
    const int figureTop = top + title.lineHeight() + TrendRow::kTextSpacing;
    figure.draw(painter, QPointF(markRoom, figureTop + figure.ascent()), text,
                theme().color(ColorRole::text));
    if (mark) {
        paintSymbol(painter, mark->name, mark->colour,
                    QPointF(0, figureTop + (figure.lineHeight() - mark->size) / 2), mark->size);
    }
    const QSizeF sparkline = sparklineSize();
    const QPointF corner(width() - sparkline.width(), (height() - sparkline.height()) / 2);
    paintSparkline(painter, value().sparkline(), theme(), QRectF(corner, sparkline));
}

QString TrendRowWidget::cutTextAt(const QPoint& position) const {
    if (position.x() >= textRoom()) {
        return {};
    }
    const auto mark = levelMarkSymbol(value().color, theme());
    const qreal markRoom = mark ? mark->size + grid::kMarkGap : 0;
    QStringList cut;
    const QString title = QString::fromStdString(value().title);
    if (theme().style(FontRole::caption).width(title) > textRoom()) {
        cut << title;
    }
    const QString figure = QString::fromStdString(value().value);
    if (theme().style(FontRole::captionMedium).width(figure) > textRoom() - markRoom) {
        cut << figure;
    }
    return cut.join('\n');
}

// Over the sparkline also the value below the pointer.
QString TrendRowWidget::toolTipAt(const QPoint& position) const {
    const int sparkline = sparklineSize().width();
    const int left = width() - sparkline;
    return QString::fromStdString(
        position.x() < left
            ? value().toolTip()
            : value().toolTip(static_cast<double>(position.x() - left) / sparkline));
}

void paintSparkline(QPainter& painter, const SparklineView& sparkline, const Theme& theme,
                    const QRectF& frame) {
    painter.setRenderHint(QPainter::Antialiasing);
    const std::vector<SparklinePoint> points = sparkline.points(frame.width(), frame.height());
    if (points.empty()) {
        QColor color = theme.color(ColorRole::secondaryText);
        color.setAlphaF(static_cast<float>(SparklineView::kPlaceholderOpacity));
        painter.setPen(Qt::NoPen);
        painter.setBrush(color);
        // Corners cannot be rounder than the bar is high.
        const qreal corner =
            std::min(SparklineView::kPlaceholderCorner, SparklineView::kPlaceholderHeight / 2);
        const QRectF bar(frame.left(), frame.center().y() - SparklineView::kPlaceholderHeight / 2,
                         frame.width(), SparklineView::kPlaceholderHeight);
        painter.drawRoundedRect(onPixelRows(painter, bar), corner, corner);
        return;
    }
    QPolygonF line;
    for (const SparklinePoint& point : points) {
        line << frame.topLeft() + QPointF(point.x, point.y);
    }
    QPen pen(theme.color(sparkline.color), SparklineView::kLineWidth, Qt::SolidLine, Qt::FlatCap,
             Qt::SvgMiterJoin);
    pen.setMiterLimit(SparklineView::kMiterLimit);
    painter.setPen(pen);
    painter.setBrush(Qt::NoBrush);
    painter.drawPolyline(line);
}

}  // namespace tarnwick::qt
