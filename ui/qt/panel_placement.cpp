// SPDX-License-Identifier: MIT
#include "ui/qt/panel_placement.h"

#include <algorithm>

namespace tarnwick::qt {

namespace {

bool opensUpwards(const QRect& anchor, const QRect& screen) {
    return anchor.center().y() > screen.center().y();
}

}  // namespace

QRect panelPlacement(const QSize& panel, const QRect& anchor, const QRect& screen,
                     const QRect& available) {
    const int x = anchor.left() + (anchor.width() - panel.width()) / 2;
    const int y = opensUpwards(anchor, screen) ? anchor.top() - kPanelGap - panel.height()
                                               : anchor.top() + anchor.height() + kPanelGap;
    const QRect inside =
        available.adjusted(kScreenMargin, kScreenMargin, -kScreenMargin, -kScreenMargin);
    const int lastX = inside.left() + inside.width() - panel.width();
    const int lastY = inside.top() + inside.height() - panel.height();
    return {QPoint(std::max(inside.left(), std::min(x, lastX)),
                   std::max(inside.top(), std::min(y, lastY))),
            panel};
}

QRect panelReplacement(const QRect& current, const QSize& panel, const QRect& anchor,
                       const QRect& screen, const QRect& available) {
    QRect place = panelPlacement(panel, anchor, screen, available);
    if (opensUpwards(anchor, screen)) {
        place.moveBottom(std::max(place.bottom(), current.bottom()));
    } else {
        place.moveTop(std::min(place.top(), current.top()));
    }
    return place;
}

QRect panelInWorkArea(const QSize& panel, const QPoint& item, const QSize& screen,
                      const QSize& workArea) {
    const int barsWidth = std::max(0, screen.width() - workArea.width());
    const int barsHeight = std::max(0, screen.height() - workArea.height());
    const bool isLeft = item.x() < barsWidth;
    const bool isRight = item.x() >= screen.width() - barsWidth;
    const bool isInRow = item.y() < barsHeight || item.y() >= screen.height() - barsHeight;
    const bool isBelow = item.y() >= screen.height() / 2;
    const int lastX = workArea.width() - kScreenMargin - panel.width();
    const int lastY = workArea.height() - kScreenMargin - panel.height();
    const int x = item.x() - (isLeft ? barsWidth : 0) - panel.width() / 2;
    int y = isBelow ? lastY : kScreenMargin;
    if ((isLeft || isRight) && !isInRow) {
        y = isBelow ? item.y() - panel.height() : item.y();
    }
    return {QPoint(std::max(kScreenMargin, std::min(x, lastX)),
                   std::max(kScreenMargin, std::min(y, lastY))),
            panel};
}

QRect cornerAnchor(const QRect& screen, const QRect& available, bool isAtBottom) {
    if (available != screen) {
        isAtBottom = available.bottom() < screen.bottom() && available.top() == screen.top();
    }
    return {isAtBottom ? available.bottomRight() : available.topRight(), QSize(1, 1)};
}

}  // namespace tarnwick::qt
