// SPDX-License-Identifier: MIT
// The cards of the settings window, each for one value of a page.
#pragma once

#include <array>
#include <functional>
#include <vector>

#include "ui/qt/settings_buttons.h"
#include "ui/qt/settings_card_widget.h"
#include "ui/qt/settings_label.h"
#include "ui/qt/shortcut_field_widget.h"
#include "ui/qt/threshold_slider_widget.h"
#include "ui/settings/settings_page.h"

namespace tarnwick::qt {

/// Two texts and a switch. A press of the switch, or anywhere on the card, calls `toggle`.
class SwitchCardWidget final : public SettingsCardWidget {
    Q_OBJECT

 public:
    SwitchCardWidget(const Theme& theme, const SwitchRow& row, std::function<void()> toggle,
                     QWidget* parent);

    void setRow(const SwitchRow& row) { switch_->setChecked(row.isOn); }

 protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

 private:
    SettingsSwitchWidget* switch_ = nullptr;
};

/// A warning; not there while there is nothing to say.
class NoticeCardWidget final : public SettingsCardWidget {
    Q_OBJECT

 public:
    NoticeCardWidget(const Theme& theme, QWidget* parent);

    void setNotice(const ItemNotice& notice);

 private:
    SettingsLabel* text_;
};

/// The field that records the shortcut, and the lines about its state.
class ShortcutCardWidget final : public SettingsCardWidget {
    Q_OBJECT

 public:
    ShortcutCardWidget(const Theme& theme, ShortcutField& field, KeyCodes keyCodes,
                       std::function<void()> clear, QWidget* parent);

    void setEditor(const ShortcutEditor& editor);

 signals:
    /// The card has another size, for example because there are more or fewer lines now.
    void heightChanged();

 protected:
    void resizeEvent(QResizeEvent* event) override;

 private:
    struct Line {
        QWidget* row;
        SymbolWidget* symbol;
        SettingsLabel* text;
    };

    Line makeLine();

    ShortcutFieldWidget* field_ = nullptr;
    SettingsButton* clear_ = nullptr;
    std::array<Line, 2> lines_{};
};

/// A dot and a text on a capsule.
class ThresholdPillWidget final : public QWidget {
    Q_OBJECT

 public:
    ThresholdPillWidget(const Theme& theme, QWidget* parent);

    void setPill(const ThresholdValuePill& pill);
    QSize sizeHint() const override;

 protected:
    void paintEvent(QPaintEvent* event) override;

 private:
    const TextStyle& style() const { return theme_.style(FontRole::captionMedium); }

    const Theme& theme_;
    QString text_;
    Tint tint_ = Tint::gray;
};

class ThresholdCardWidget final : public SettingsCardWidget {
    Q_OBJECT

 public:
    ThresholdCardWidget(const Theme& theme, const ThresholdEditorCard& card,
                        DualThresholdSlider& slider, QWidget* parent);

    void setCard(const ThresholdEditorCard& card);

 private:
    std::array<ThresholdPillWidget*, 2> pills_{};
    ThresholdSliderWidget* slider_ = nullptr;
};

/// The name and the version of the program.
class ProgramCardWidget final : public SettingsCardWidget {
    Q_OBJECT

 public:
    ProgramCardWidget(const Theme& theme, const ProgramName& name, QWidget* parent);
};

class FeatureCardWidget final : public SettingsCardWidget {
    Q_OBJECT

 public:
    FeatureCardWidget(const Theme& theme, QWidget* parent);
};

/// Its links call `follow`.
class PrivacyCardWidget final : public SettingsCardWidget {
    Q_OBJECT

 public:
    PrivacyCardWidget(const Theme& theme, const std::function<void()>& follow, QWidget* parent);
};

}  // namespace tarnwick::qt
