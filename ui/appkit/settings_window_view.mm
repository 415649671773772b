// SPDX-License-Identifier: MIT
#include "ui/appkit/settings_window_view.h"

#import <AppKit/AppKit.h>
#include <optional>
#include <string>

#include "ui/appkit/settings_views.h"
#include "ui/appkit/style.h"
#include "ui/appkit/view_holder.h"
#include "ui/settings/settings_view.h"

namespace tarnwick::appkit {
namespace {

std::optional<std::string> informationText(NSString* key) {
    NSObject* value = [NSBundle.mainBundle objectForInfoDictionaryKey:key];
    if (![value isKindOfClass:NSString.class]) {
        return std::nullopt;
    }
    return std::string(static_cast<NSString*>(value).UTF8String);
}

SettingsViewEnvironment environment(platform::Dispatch& dispatch,
                                    platform::KeyboardLayout& keyboardLayout) {
    return {
        .dispatch = dispatch,
        .keyboardLayout = keyboardLayout,
        .program = {.shortVersion = informationText(@"CFBundleShortVersionString"),
                    .buildVersion = informationText(@"CFBundleVersion")},
        .openAddress =
            [](const std::string& address) {
                [NSWorkspace.sharedWorkspace openURL:[NSURL URLWithString:string(address)]];
            },
        .keyboardNavigationEnabled = static_cast<bool>(application().fullKeyboardAccessEnabled),
    };
}

/// Owns the native views and the SettingsView that they read from, so that both are destroyed
/// together.
class SettingsHolder final : public ViewHolder {
 public:
    explicit SettingsHolder(std::unique_ptr<SettingsView> settingsView)
        : ViewHolder([[TNWSettingsTabs alloc] initWithView:settingsView.get()]),
          settingsView_(std::move(settingsView)) {}
    SettingsHolder(const SettingsHolder&) = delete;
    SettingsHolder& operator=(const SettingsHolder&) = delete;
    // A control that is released later must not call the destroyed view.
    ~SettingsHolder() override {
        [static_cast<TNWSettingsTabs*>(controller()) forgetView];
        settingsView_->shortcutField().makeFirstResponder = nullptr;
        settingsView_->shortcutField().onRefresh = nullptr;
    }

 private:
    const std::unique_ptr<SettingsView> settingsView_;
};

}  // namespace

std::unique_ptr<platform::View> makeSettingsView(UserSettings& settings,
                                                 platform::Dispatch& dispatch,
                                                 platform::KeyboardLayout& keyboardLayout) {
    return std::make_unique<SettingsHolder>(
        std::make_unique<SettingsView>(settings, environment(dispatch, keyboardLayout)));
}

}  // namespace tarnwick::appkit
