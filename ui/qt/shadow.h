// SPDX-License-Identifier: MIT
// The soft shadow under the panel.
#pragma once

#include <QRect>

class QPainter;

namespace tarnwick::qt {

/// Room that the shadow needs on every side, logical pixels.
inline constexpr int kShadowMargin = 28;

/// Paints the shadow of a rounded rectangle, around it and under its edge.
void paintShadow(QPainter& painter, const QRect& rect, int corner, bool isDark);

}  // namespace tarnwick::qt
