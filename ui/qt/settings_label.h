// SPDX-License-Identifier: MIT
// Texts and symbols of the settings window.
#pragma once

#include <QLabel>
#include <string_view>
#include <variant>

#include "core/records/tint.h"
#include "ui/qt/theme.h"

namespace tarnwick::qt {

QString fromUtf8(std::string_view text);

/// A text in one of the theme's fonts and colours; follows changes of the theme. It wraps at its
/// width; a caption neither within a combination of keys nor before its last word. Its accessible
/// name is the text as it was set.
class SettingsLabel final : public QLabel {
    Q_OBJECT

 public:
    SettingsLabel(const Theme& theme, FontRole font, ColorRole color, QWidget* parent,
                  std::string_view text = {});

    void setUtf8(std::string_view text);

 protected:
    bool event(QEvent* event) override;

 private:
    void applyTheme();

    const Theme& theme_;
    FontRole font_;
    ColorRole color_;
};

/// One symbol. It has no text for assistive technology, because a text beside it says the same.
class SymbolWidget final : public QWidget {
    Q_OBJECT

 public:
    using Color = std::variant<ColorRole, Tint>;

    /// `size` beside text of the usual size, logical pixels.
    SymbolWidget(const Theme& theme, int size, QWidget* parent);

    void setSymbol(std::string_view name, Color color);

 protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

 private:
    void applyFont();

    const Theme& theme_;
    int size_;
    std::string_view name_;
    Color color_ = ColorRole::text;
};

}  // namespace tarnwick::qt
