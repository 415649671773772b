// SPDX-License-Identifier: MIT
// Sentences on a few lines.
#pragma once

#include <QStringList>

#include "platform/qt/text_style.h"

namespace tarnwick::qt {

/// The text broken at spaces into at least one and at most `lines` lines, none wider than `width`
/// logical pixels. If the text fits, the lines have about the same length; otherwise it is cut at
/// the end of the last line.
QStringList wrapped(const QString& text, const TextStyle& style, qreal width, int lines);

}  // namespace tarnwick::qt
