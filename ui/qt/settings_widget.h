// SPDX-License-Identifier: MIT
// The whole content of the settings window.
#pragma once

#include <QWidget>
#include <array>

#include "ui/qt/settings_page_widget.h"
#include "ui/qt/settings_tab_bar.h"
#include "ui/qt/theme.h"
#include "ui/settings/settings_view.h"

class QStackedLayout;

namespace tarnwick::qt {

/// The tabs, and below them the page of the selected one. A page is made when its tab is first
/// selected. Escape and the usual keys to close a window close it.
class SettingsWidget final : public QWidget {
    Q_OBJECT

 public:
    SettingsWidget(UserSettings& settings, const Theme& theme, SettingsViewEnvironment environment,
                   KeyCodes keyCodes);
    ~SettingsWidget() override;

    SettingsView& view() { return view_; }

 protected:
    void showEvent(QShowEvent* event) override;

 private:
    void apply(const SettingsView::Content& content);
    SettingsPageWidget& page(Tab tab);

    SettingsView view_;
    const Theme& theme_;
    KeyCodes keyCodes_;
    SettingsTabBar* tabs_ = nullptr;
    QStackedLayout* pages_;
    /// Null for a tab that has not been selected yet.
    std::array<SettingsPageWidget*, kTabs.size()> made_{};
    bool wasShown_ = false;
};

}  // namespace tarnwick::qt
