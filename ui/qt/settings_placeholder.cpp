#include "ui/qt/settings_placeholder.h"

#include <QLabel>

#include "ui/qt/widget_view.h"

namespace tarnwick::qt {

std::unique_ptr<platform::View> makeSettingsPlaceholder() {
    auto label = std::make_unique<QLabel>("There is nothing to set here yet.");
    label->setAlignment(Qt::AlignCenter);
    label->setWordWrap(true);
    return std::make_unique<WidgetView>(std::move(label));
}

}  // namespace tarnwick::qt
