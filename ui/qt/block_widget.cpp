// SPDX-License-Identifier: MIT
#include "ui/qt/block_widget.h"

#include <QHelpEvent>
#include <QToolTip>
#include <utility>

namespace tarnwick::qt {

QString BlockWidget::cutTextAt(const QPoint&) const {
    return {};
}

void BlockWidget::announceValue() {
    const std::optional<double> value = accessibleValue();
    if (std::exchange(announcedValue_, value) != value && value) {
        emit accessibleValueChanged(*value);
    }
}

bool BlockWidget::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip) {
        return QWidget::event(event);
    }
    const auto* help = static_cast<QHelpEvent*>(event);
    const QString text = cutTextAt(help->pos());
    if (text.isEmpty()) {
        QToolTip::hideText();
        event->ignore();
    } else {
        // Escaped, because names may contain any characters and are not markup.
        QToolTip::showText(help->globalPos(),
                           "<span>" + text.toHtmlEscaped().replace('\n', "<br>") + "</span>", this);
    }
    return true;
}

}  // namespace tarnwick::qt
