// SPDX-License-Identifier: MIT
// Tool tips in the program's own look.
#pragma once

#include <QRect>
#include <QString>
#include <QWidget>

#include "ui/qt/theme.h"

namespace tarnwick::qt {

/// Shows `text`, which is no markup, below `place` of `owner`, or above it where the screen ends.
/// Lines are separated by '\n'; long ones wrap. There is one tool tip at a time: it stays until the
/// pointer leaves the place, something is pressed or the owner goes. Main thread.
void showToolTip(QWidget& owner, const QRect& place, const QString& text, const Theme& theme);
void hideToolTip();
/// What is shown; empty without a tool tip.
QString shownToolTip();

}  // namespace tarnwick::qt
