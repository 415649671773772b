// SPDX-License-Identifier: MIT
#include "ui/qt/wrapped_text.h"

namespace tarnwick::qt {

namespace {

/// As many words on each line as fit.
QStringList filled(const QString& text, const TextStyle& style, qreal width, int lines) {
    QStringList result;
    QString rest = text;
    while (result.size() + 1 < lines && style.width(rest) > width) {
        qsizetype end = -1;
        for (qsizetype space = rest.indexOf(' ');
             space >= 0 && style.width(rest.left(space)) <= width;
             space = rest.indexOf(' ', space + 1)) {
            end = space;
        }
        if (end < 0) {
            break;
        }
        result << rest.left(end);
        rest = rest.mid(end + 1);
    }
    result << style.elided(rest, width);
    return result;
}

}  // namespace

QStringList wrapped(const QString& text, const TextStyle& style, qreal width, int lines) {
    QStringList result = filled(text, style, width, lines);
    if (result.size() == 1 || result.join(' ') != text) {
        return result;
    }
    // The narrowest block with the same number of lines leaves no word alone on the last one.
    for (qreal narrower = width - 1; narrower > 0; --narrower) {
        QStringList next = filled(text, style, narrower, lines);
        if (next.size() != result.size() || next.join(' ') != text) {
            break;
        }
        result = next;
    }
    return result;
}

}  // namespace tarnwick::qt
