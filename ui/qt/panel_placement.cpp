#include "ui/qt/panel_placement.h"

#include <algorithm>

namespace tarnwick::qt {

QRect panelPlacement(const QSize& panel, const QRect& anchor, const QRect& screen,
                     const QRect& available) {
    const bool opensUpwards = anchor.center().y() > screen.center().y();
    const int x = anchor.left() + (anchor.width() - panel.width()) / 2;
    const int y = opensUpwards ? anchor.top() - kPanelGap - panel.height()
                               : anchor.top() + anchor.height() + kPanelGap;
    const QRect inside =
        available.adjusted(kScreenMargin, kScreenMargin, -kScreenMargin, -kScreenMargin);
    const int lastX = inside.left() + inside.width() - panel.width();
    const int lastY = inside.top() + inside.height() - panel.height();
    return {QPoint(std::max(inside.left(), std::min(x, lastX)),
                   std::max(inside.top(), std::min(y, lastY))),
            panel};
}

QRect cornerAnchor(const QRect& screen, const QRect& available) {
    const bool isAtBottom = available.bottom() < screen.bottom() && available.top() == screen.top();
    return {isAtBottom ? available.bottomRight() : available.topRight(), QSize(1, 1)};
}

}  // namespace tarnwick::qt
