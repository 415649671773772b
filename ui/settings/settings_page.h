// SPDX-License-Identifier: MIT
// What a tab of the settings window shows, as a value.
#pragma once

#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "core/records/tint.h"
#include "ui/settings/about.h"
#include "ui/settings/display_mode_card.h"
#include "ui/settings/shortcut_editor.h"
#include "ui/settings/threshold_editor_card.h"

namespace tarnwick {

/// The preferences that are switched on and off.
enum class SettingsSwitch { launchOnLogin, remindRestartAfterWeek };

struct SwitchRow {
    SettingsSwitch setting = SettingsSwitch::launchOnLogin;
    std::string_view title;
    std::string_view caption;
    bool isOn = false;

    bool operator==(const SwitchRow&) const = default;
};

/// What the user should know about the status item, with a warning's symbol. Takes no room while
/// `text` is empty.
struct ItemNotice {
    static constexpr std::string_view kIcon = "exclamationmark.triangle.fill";
    static constexpr Tint kTint = Tint::orange;

    std::string text;

    bool operator==(const ItemNotice&) const = default;
};

/// The button that resets every threshold.
struct ResetButton {
    static constexpr std::string_view kTitle = "Reset to Defaults";

    bool operator==(const ResetButton&) const = default;
};

/// Draws its content on a rounded card.
struct SettingsCard {
    std::variant<SwitchRow, ShortcutEditor, ProgramName, FeatureList, PrivacyNote, ItemNotice>
        content;

    bool operator==(const SettingsCard&) const = default;
};

using SettingsItem = std::variant<DisplayModeCard, ThresholdEditorCard, SettingsCard, ResetButton>;

/// A heading, if `title` is not empty, above the content.
struct SettingsSection {
    std::string_view title;
    std::vector<SettingsItem> content;

    bool operator==(const SettingsSection&) const = default;
};

struct SettingsPage {
    /// Points between two sections.
    static constexpr int kSectionSpacing = 12;
    static constexpr int kWideSectionSpacing = 18;
    /// Points between two items of a section.
    static constexpr int kItemSpacing = 12;

    int sectionSpacing = kSectionSpacing;
    std::vector<SettingsSection> sections;

    bool operator==(const SettingsPage&) const = default;
};

}  // namespace tarnwick
