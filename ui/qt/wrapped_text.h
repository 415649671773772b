// Sentences on a few lines.
#pragma once

#include <QStringList>

#include "platform/qt/text_style.h"

namespace tarnwick::qt {

/// The text broken at spaces into at most `lines` lines of about the same length, none wider than
/// `width` logical pixels; what does not fit is cut at the end of the last one. Always at least one
/// line.
QStringList wrapped(const QString& text, const TextStyle& style, qreal width, int lines);

}  // namespace tarnwick::qt
