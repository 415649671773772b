// SPDX-License-Identifier: MIT
#include "ui/qt/block_widget.h"

#include <QHelpEvent>
#include <utility>

#include "ui/qt/tool_tip.h"

namespace tarnwick::qt {

QString BlockWidget::cutTextAt(const QPoint&) const {
    return {};
}

QString BlockWidget::toolTipAt(const QPoint&) const {
    return QString::fromStdString(toolTip_);
}

QRect BlockWidget::toolTipPlace(const QPoint&) const {
    return rect().adjusted(0, overhang(), 0, -overhang());
}

void BlockWidget::setToolTipText(const std::string& text) {
    if (toolTip_ != text) {
        toolTip_ = text;
        setAccessibleDescription(QString::fromStdString(text));
    }
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
    QStringList lines{cutTextAt(help->pos()), toolTipAt(help->pos())};
    lines.removeAll(QString());
    if (lines.isEmpty()) {
        hideToolTip();
        event->ignore();
    } else {
        showToolTip(*this, toolTipPlace(help->pos()), lines.join('\n'), theme());
    }
    return true;
}

}  // namespace tarnwick::qt
