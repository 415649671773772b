#include "ui/qt/settings_content.h"

#include <QCoreApplication>
#include <utility>

#include "ui/qt/settings_widget.h"
#include "ui/qt/widget_view.h"

namespace tarnwick::qt {

namespace {

class SettingsContent final : public WidgetView {
 public:
    SettingsContent(std::unique_ptr<QWidget> widget, std::function<void()> gone)
        : WidgetView(std::move(widget)), gone_(std::move(gone)) {}
    SettingsContent(const SettingsContent&) = delete;
    SettingsContent& operator=(const SettingsContent&) = delete;
    ~SettingsContent() override {
        if (gone_) {
            QMetaObject::invokeMethod(QCoreApplication::instance(), std::move(gone_),
                                      Qt::QueuedConnection);
        }
    }

 private:
    std::function<void()> gone_;
};

}  // namespace

std::unique_ptr<platform::View> makeSettingsContent(UserSettings& settings, const Theme& theme,
                                                    SettingsContentEnvironment environment) {
    return std::make_unique<SettingsContent>(
        std::make_unique<SettingsWidget>(settings, theme, std::move(environment.view),
                                         std::move(environment.keyCodes)),
        std::move(environment.gone));
}

}  // namespace tarnwick::qt
