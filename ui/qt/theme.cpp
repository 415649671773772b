// SPDX-License-Identifier: MIT
#include "ui/qt/theme.h"

#include <QApplication>
#include <QFontInfo>
#include <QFontMetricsF>
#include <QImage>
#include <QPalette>
#include <algorithm>
#include <array>

namespace tarnwick::qt {

namespace {

struct RoleFont {
    FontRole role;
    /// Logical pixels at 96 dots an inch beside an interface font of kReferencePointSize.
    qreal size;
    QFont::Weight weight;
};

constexpr qreal kReferencePointSize = 11;
/// Up to this size of the interface font the panel has room for its texts, and nothing but them
/// grows.
constexpr qreal kLargestUsualPointSize = 12;
constexpr qreal kLargestScale = 2;
/// Points in a logical pixel at 96 dots an inch.
constexpr qreal kPointsPerPixel = 0.75;
constexpr std::array kRoleFonts = {
    RoleFont{FontRole::headline, 15, QFont::DemiBold},
    RoleFont{FontRole::subheadline, 13, QFont::Normal},
    RoleFont{FontRole::subheadlineMedium, 13, QFont::Medium},
    RoleFont{FontRole::caption, 11.5, QFont::Normal},
    RoleFont{FontRole::captionMedium, 11.5, QFont::Medium},
};

QColor secondaryText(bool isDark) {
    return isDark ? QColor(0xA3A3AA) : QColor(0x6B6B70);
}

/// The roles that differ where the user wants more contrast; the others are as usual.
std::optional<QColor> highContrastColor(ColorRole role, bool isDark) {
    const QColor text = isDark ? QColor(Qt::white) : QColor(Qt::black);
    const auto faint = [&text](float opacity) {
        QColor color = text;
        color.setAlphaF(opacity);
        return color;
    };
    switch (role) {
        case ColorRole::panel:
        case ColorRole::card:
            return isDark ? QColor(0x101012) : QColor(Qt::white);
        case ColorRole::text:
            return text;
        case ColorRole::secondaryText:
            return isDark ? QColor(0xDCDCE2) : QColor(0x38383C);
        case ColorRole::control:
            return faint(0.1F);
        case ColorRole::controlHovered:
            return faint(0.18F);
        case ColorRole::controlPressed:
            return faint(0.26F);
        case ColorRole::hairline:
            return faint(0.6F);
        case ColorRole::accent:
            return isDark ? QColor(0x8FC1FF) : QColor(0x003E92);
        case ColorRole::window:
        case ColorRole::track:
            break;
    }
    return std::nullopt;
}

QColor withOpacity(QColor color, float opacity) {
    color.setAlphaF(opacity);
    return color;
}

/// Without a medium weight the normal one is taken, and titles would look like the rows below them.
/// A font's information names the weight that was asked for, so the widths tell. Those of a font
/// with one width for all letters do not; then a bolder weight does no harm.
bool hasMediumWeight(QFont font) {
    const QString sample = "Memory Breakdown";
    font.setWeight(QFont::Medium);
    const qreal medium = QFontMetricsF(font).horizontalAdvance(sample);
    font.setWeight(QFont::Normal);
    return medium != QFontMetricsF(font).horizontalAdvance(sample);
}

}  // namespace

Theme::Theme(bool isDark) : isDark_(isDark) {
    applyPalette();
}

void Theme::setDark(bool isDark) {
    if (isDark == isDark_) {
        return;
    }
    isDark_ = isDark;
    applyPalette();
}

void Theme::setHighContrast(bool isHigh) {
    if (isHigh != isHighContrast_) {
        isHighContrast_ = isHigh;
        applyPalette();
    }
}

QColor Theme::color(ColorRole role) const {
    if (const auto strong =
            isHighContrast_ ? highContrastColor(role, isDark_) : std::optional<QColor>()) {
        return *strong;
    }
    const QColor text = isDark_ ? QColor(0xF4F4F6) : QColor(0x1D1D1F);
    switch (role) {
        case ColorRole::panel:
            return isDark_ ? QColor(0x232326) : QColor(0xFBFBFC);
        case ColorRole::window:
            return isDark_ ? QColor(0x1E1E20) : QColor(0xF3F3F5);
        case ColorRole::card:
            return isDark_ ? QColor(0x2A2A2D) : QColor(0xFFFFFF);
        case ColorRole::text:
            return text;
        case ColorRole::secondaryText:
            return secondaryText(isDark_);
        case ColorRole::track:
            return withOpacity(text, isDark_ ? 0.14F : 0.13F);
        case ColorRole::control:
            return withOpacity(text, isDark_ ? 0.06F : 0.055F);
        case ColorRole::controlHovered:
            return withOpacity(text, isDark_ ? 0.11F : 0.095F);
        case ColorRole::controlPressed:
            return withOpacity(text, isDark_ ? 0.16F : 0.145F);
        case ColorRole::hairline:
            return withOpacity(text, isDark_ ? 0.12F : 0.14F);
        case ColorRole::accent:
            return isDark_ ? QColor(0x4C9BFF) : QColor(0x085FD0);
    }
    return text;
}

QColor Theme::color(Tint tint, bool isDark) {
    switch (tint) {
        case Tint::green:
            return isDark ? QColor(0x35CF63) : QColor(0x1C9142);
        case Tint::yellow:
            return isDark ? QColor(0xFFCF26) : QColor(0xE0A100);
        case Tint::red:
            return isDark ? QColor(0xFF5147) : QColor(0xE5352B);
        case Tint::orange:
            return isDark ? QColor(0xFF9F1C) : QColor(0xE97B00);
        case Tint::gray:
            break;
    }
    return secondaryText(isDark);
}

const TextStyle& Theme::style(FontRole role) const {
    takeFont();
    return styles_[static_cast<std::size_t>(role)];
}

const TextStyle& Theme::style(FontRole role, qreal share) const {
    const TextStyle& whole = style(role);
    const auto found = scaledStyles_.find({role, share});
    if (found != scaledStyles_.end()) {
        return found->second;
    }
    return scaledStyles_.emplace(std::pair(role, share), whole.scaled(share)).first->second;
}

int Theme::scaled(int length) const {
    takeFont();
    return qRound(length * scale_);
}

void Theme::takeFont() const {
    if (base_ == QApplication::font()) {
        return;
    }
    base_ = QApplication::font();
    // Under Wayland that font was made before the screen was known, and would measure texts for
    // another resolution than the one they are drawn in.
    const QImage device(1, 1, QImage::Format_RGB32);
    const QFont desktop(*base_, &device);
    const qreal points =
        desktop.pointSizeF() > 0 ? desktop.pointSizeF() : QFontInfo(desktop).pointSizeF();
    scale_ = std::clamp(points / kLargestUsualPointSize, 1.0, kLargestScale);
    styles_.clear();
    scaledStyles_.clear();
    for (const RoleFont& each : kRoleFonts) {
        QFont font = desktop;
        font.setPointSizeF(each.size * kPointsPerPixel * points / kReferencePointSize);
        font.setWeight(each.weight);
        if (each.weight == QFont::Medium && !hasMediumWeight(font)) {
            font.setWeight(QFont::DemiBold);
        }
        styles_.emplace_back(font);
    }
}

void Theme::applyPalette() const {
    const QColor text = color(ColorRole::text);
    const QColor secondary = color(ColorRole::secondaryText);
    QPalette palette(text, color(ColorRole::window));
    palette.setColor(QPalette::Window, color(ColorRole::window));
    palette.setColor(QPalette::WindowText, text);
    palette.setColor(QPalette::Base, color(ColorRole::card));
    palette.setColor(QPalette::AlternateBase, color(ColorRole::window));
    palette.setColor(QPalette::Text, text);
    palette.setColor(QPalette::Button, color(ColorRole::card));
    palette.setColor(QPalette::ButtonText, text);
    palette.setColor(QPalette::ToolTipBase, color(ColorRole::card));
    palette.setColor(QPalette::ToolTipText, text);
    palette.setColor(QPalette::PlaceholderText, secondary);
    palette.setColor(QPalette::Highlight, color(ColorRole::accent));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, secondary);
    }
    QApplication::setPalette(palette);
}

}  // namespace tarnwick::qt
