// SPDX-License-Identifier: MIT
// The page of one tab of the settings window; scrolls if it is higher than the window.
#pragma once

#include <QPointer>
#include <QScrollArea>
#include <functional>
#include <vector>

#include "ui/qt/shortcut_field_widget.h"
#include "ui/qt/theme.h"
#include "ui/settings/settings_view.h"

class QVBoxLayout;

namespace tarnwick::qt {

/// Made for one tab of a view. Its values may change, but its items stay the same. `view` must
/// outlive the widget.
class SettingsPageWidget final : public QScrollArea {
    Q_OBJECT

 public:
    SettingsPageWidget(SettingsView& view, Tab tab, const Theme& theme, KeyCodes keyCodes,
                       QWidget* parent);
    ~SettingsPageWidget() override;

    void setPage(const SettingsPage& page);

 private:
    using Setter = std::function<void(const SettingsItem&)>;

    void scrollTo(QWidget* focused);
    void addSection(const SettingsSection& section);
    QWidget* makeItem(const SettingsItem& item, QWidget* parent);
    QWidget* makeCard(const SettingsCard& card, QWidget* parent);

    SettingsView& view_;
    const Theme& theme_;
    KeyCodes keyCodes_;
    QVBoxLayout* column_;
    QPointer<QWidget> lastFocused_;
    /// One for each item of the page, in order.
    std::vector<Setter> setters_;
};

}  // namespace tarnwick::qt
