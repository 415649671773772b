// SPDX-License-Identifier: MIT
#include "ui/settings/settings_view.h"

#include <utility>

namespace tarnwick {

namespace {

/// The stored thresholds of a metric.
struct StoredThresholds {
    double (UserSettings::*normal)() const;
    void (UserSettings::*setNormal)(double);
    double (UserSettings::*high)() const;
    void (UserSettings::*setHigh)(double);
};

StoredThresholds stored(JudgedMetric metric) {
    switch (metric) {
        case JudgedMetric::cpu:
            break;
        case JudgedMetric::gpu:
            return {&UserSettings::gpuNormal, &UserSettings::setGPUNormal, &UserSettings::gpuHigh,
                    &UserSettings::setGPUHigh};
        case JudgedMetric::memory:
            return {&UserSettings::memoryNormal, &UserSettings::setMemoryNormal,
                    &UserSettings::memoryHigh, &UserSettings::setMemoryHigh};
        case JudgedMetric::storage:
            return {&UserSettings::storageNormal, &UserSettings::setStorageNormal,
                    &UserSettings::storageHigh, &UserSettings::setStorageHigh};
    }
    return {&UserSettings::cpuNormal, &UserSettings::setCPUNormal, &UserSettings::cpuHigh,
            &UserSettings::setCPUHigh};
}

/// A binding to one property of the settings.
template <class T>
Binding<T> bound(UserSettings& settings, T (UserSettings::*get)() const,
                 void (UserSettings::*set)(T)) {
    return {[&settings, get] { return (settings.*get)(); },
            [&settings, set](T value) { (settings.*set)(value); }};
}

}  // namespace

SettingsView::SettingsView(UserSettings& settings, SettingsViewEnvironment environment)
    : settings_(settings),
      environment_(std::move(environment)),
      recorder_(
          environment_.keyboardLayout,
          bound(settings, &UserSettings::shortcutKeyCode, &UserSettings::setShortcutKeyCode),
          bound(settings, &UserSettings::shortcutModifiers, &UserSettings::setShortcutModifiers),
          {[this] { return shortcutValidationMessage_; },
           [this](std::optional<std::string> message) {
               setValidationMessage(std::move(message));
           }}),
      launchOnLogin_(settings.launchOnLogin()),
      settingsSubscription_(settings.objectWillChange([this] { nextRebuild_.schedule(); })) {
    for (const ThresholdEditor& editor : kThresholdEditors) {
        const StoredThresholds values = stored(editor.metric);
        sliders_.emplace_back(std::string(editor.title),
                              bound(settings, values.normal, values.setNormal),
                              bound(settings, values.high, values.setHigh), editor.normalRange,
                              editor.highRange, environment_.keyboardNavigationEnabled);
    }
    if (environment_.itemNotice != nullptr) {
        noticeSubscription_ =
            environment_.itemNotice->objectWillChange([this] { nextRebuild_.schedule(); });
    }
    recorder_.field().onRecordingChanged = [this] {
        settings_.setRecordingShortcut(recorder_.field().isRecording());
    };
    recorder_.update();
    lastContent_ = content();
}

SettingsView::~SettingsView() {
    if (settings_.isRecordingShortcut()) {
        settings_.setRecordingShortcut(false);
    }
}

SettingsView::Content SettingsView::content() const {
    return {selectedTab_, page(selectedTab_)};
}

SettingsPage SettingsView::page(Tab tab) const {
    switch (tab) {
        case Tab::general:
            break;
        case Tab::customize:
            return customizePage();
        case Tab::about:
            return aboutPage();
    }
    return generalPage();
}

SettingsPage SettingsView::generalPage() const {
    SettingsSection appearance{"Appearance", {}};
    for (const MenuBarDisplayMode mode : kMenuBarDisplayModes) {
        const bool isWithoutText = mode == MenuBarDisplayMode::advanced &&
                                   environment_.itemIsIconOnly && environment_.itemIsIconOnly();
        appearance.content.emplace_back(DisplayModeCard{mode, settings_.menuBarDisplayMode(),
                                                        isWithoutText ? kIconsOnlyToolTip : ""});
    }
    const std::int64_t keyCode = settings_.shortcutKeyCode();
    SettingsSection system{
        "System",
        {SettingsCard{SwitchRow{SettingsSwitch::launchOnLogin, "Launch on login",
                                "Automatically start Tarnwick when you log in.",
                                settings_.launchOnLogin()}},
         SettingsCard{ShortcutEditor{
             recorder_.field().text(), environment_.shortcutTip, keyCode >= 0,
             statusLines({shortcutValidationMessage_, settings_.shortcutRegistrationState(),
                          keyCode, settings_.shortcutModifiers(),
                          environment_.otherShortcutKeys ? environment_.otherShortcutKeys()
                                                         : std::string()},
                         environment_.keyboardLayout)}}}};
    SettingsPage page{SettingsPage::kSectionSpacing, {std::move(appearance), std::move(system)}};
    if (environment_.itemNotice != nullptr) {
        page.sections.insert(page.sections.begin(),
                             {{}, {SettingsCard{ItemNotice{*environment_.itemNotice->text}}}});
    }
    return page;
}

SettingsPage SettingsView::customizePage() const {
    SettingsSection reminders{
        "Reminders",
        {SettingsCard{SwitchRow{SettingsSwitch::remindRestartAfterWeek,
                                "Remind restart after a week",
                                "Show a restart recommendation when uptime goes past 7 days.",
                                settings_.remindRestartAfterWeek()}}}};
    SettingsSection thresholds{"Thresholds", {}};
    for (const ThresholdEditor& editor : kThresholdEditors) {
        const StoredThresholds values = stored(editor.metric);
        thresholds.content.emplace_back(ThresholdEditorCard{
            editor.metric, editor.title, editor.icon, (settings_.*values.normal)(),
            (settings_.*values.high)(), editor.normalRange, editor.highRange});
    }
    thresholds.content.emplace_back(ResetButton{});
    return {SettingsPage::kWideSectionSpacing, {std::move(reminders), std::move(thresholds)}};
}

SettingsPage SettingsView::aboutPage() const {
    return {SettingsPage::kSectionSpacing,
            {{"", {SettingsCard{ProgramName{versionText(environment_.program)}}}},
             {"", {SettingsCard{FeatureList{}}}},
             {PrivacyNote::kTitle, {SettingsCard{PrivacyNote{}}}}}};
}

void SettingsView::setObserver(std::function<void(const Content&)> observer) {
    observer_ = std::move(observer);
}

void SettingsView::selectTab(Tab tab) {
    selectedTab_ = tab;
    nextRebuild_.schedule();
}

void SettingsView::selectDisplayMode(MenuBarDisplayMode mode) {
    if (settings_.menuBarDisplayMode() != mode) {
        settings_.setMenuBarDisplayMode(mode);
    }
}

void SettingsView::setSwitch(SettingsSwitch setting, bool on) {
    switch (setting) {
        case SettingsSwitch::launchOnLogin:
            settings_.setLaunchOnLogin(on);
            // At once, because the window may be closed before a later turn.
            return followLaunchOnLogin();
        case SettingsSwitch::remindRestartAfterWeek:
            return settings_.setRemindRestartAfterWeek(on);
    }
}

void SettingsView::toggleSwitch(SettingsSwitch setting) {
    setSwitch(setting, setting == SettingsSwitch::launchOnLogin
                           ? !settings_.launchOnLogin()
                           : !settings_.remindRestartAfterWeek());
}

// If the system refuses a change, updateLoginItem() resets the preference, which is a change, too.
// The loop ends because a preference that equals the system's state is not reset.
void SettingsView::followLaunchOnLogin() {
    while (std::exchange(launchOnLogin_, settings_.launchOnLogin()) != settings_.launchOnLogin()) {
        settings_.updateLoginItem();
    }
}

void SettingsView::clearShortcut() {
    settings_.setShortcutKeyCode(-1);
    settings_.setShortcutModifiers(0);
    settings_.setShortcutRegistrationState(RegistrationState::inactive);
    setValidationMessage(std::nullopt);
}

DualThresholdSlider& SettingsView::slider(JudgedMetric metric) {
    return sliders_[static_cast<std::size_t>(metric)];
}

void SettingsView::openMakerSite() {
    if (environment_.openAddress) {
        environment_.openAddress(std::string(kMakerAddress));
    }
}

// The field calls this after every change of its state, so the rebuild is scheduled here.
void SettingsView::setValidationMessage(std::optional<std::string> message) {
    shortcutValidationMessage_ = std::move(message);
    nextRebuild_.schedule();
}

void SettingsView::rebuild() {
    followLaunchOnLogin();
    recorder_.update();
    Content next = content();
    if (next == lastContent_) {
        return;
    }
    lastContent_ = std::move(next);
    if (observer_) {
        observer_(lastContent_);
    }
}

}  // namespace tarnwick
