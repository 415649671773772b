#include "ui/qt/wrapped_text.h"

namespace tarnwick::qt {

QStringList wrapped(const QString& text, const TextStyle& style, qreal width, int lines) {
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

}  // namespace tarnwick::qt
