// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/session/appearance.h"

#include <utility>

namespace tarnwick::platform {
namespace {

// 0: no preference, 1: dark, 2: light.
constexpr uint kDark = 1;

bool saysDark(const QVariant& value) {
    return value.metaType() == QMetaType::fromType<uint>() && value.toUInt() == kDark;
}

// 0: no preference, 1: more contrast.
constexpr uint kMoreContrast = 1;

bool saysMoreContrast(const QVariant& value) {
    return value.metaType() == QMetaType::fromType<uint>() && value.toUInt() == kMoreContrast;
}

bool saysOn(const QVariant& value) {
    return value.metaType() == QMetaType::fromType<bool>() && value.toBool();
}

// 0: no preference, 1: less motion.
constexpr uint kReduced = 1;

bool saysReduced(const QVariant& value) {
    return value.metaType() == QMetaType::fromType<uint>() && value.toUInt() == kReduced;
}

bool saysOff(const QVariant& value) {
    return value.metaType() == QMetaType::fromType<bool>() && !value.toBool();
}

/// Plasma keeps its numbers as text.
bool saysInstant(const QVariant& value) {
    bool isNumber = false;
    const double factor = value.toString().toDouble(&isNumber);
    return isNumber && factor <= 0;
}

}  // namespace

ColorScheme::ColorScheme(const QDBusConnection& bus, std::function<void(bool dark)> changed)
    : changed_(std::move(changed)),
      settings_(bus, {{"org.freedesktop.appearance", "color-scheme",
                       [this](const QVariant& value) { set(saysDark(value)); }}}) {}

void ColorScheme::set(bool dark) {
    if (dark_ != dark) {
        dark_ = dark;
        if (changed_) {
            changed_(dark);
        }
    }
}

HighContrast::HighContrast(const QDBusConnection& bus, std::function<void(bool isHigh)> changed)
    : changed_(std::move(changed)),
      settings_(bus, {{"org.freedesktop.appearance", "contrast",
                       [this](const QVariant& value) {
                           isAskedFor_ = saysMoreContrast(value);
                           update();
                       }},
                      {"org.gnome.desktop.a11y.interface", "high-contrast",
                       [this](const QVariant& value) {
                           isSwitchedOn_ = saysOn(value);
                           update();
                       }}}) {}

void HighContrast::update() {
    const bool isHigh = isAskedFor_ || isSwitchedOn_;
    if (isHigh_ != isHigh) {
        isHigh_ = isHigh;
        if (changed_) {
            changed_(isHigh);
        }
    }
}

ReducedMotion::ReducedMotion(const QDBusConnection& bus,
                             std::function<void(bool isReduced)> changed)
    : changed_(std::move(changed)),
      settings_(bus, {{"org.freedesktop.appearance", "reduced-motion",
                       [this](const QVariant& value) {
                           isAskedFor_ = saysReduced(value);
                           update();
                       }},
                      {"org.gnome.desktop.interface", "enable-animations",
                       [this](const QVariant& value) {
                           animationsAreOff_ = saysOff(value);
                           update();
                       }},
                      {"org.kde.kdeglobals.KDE", "AnimationDurationFactor",
                       [this](const QVariant& value) {
                           animationsAreInstant_ = saysInstant(value);
                           update();
                       }}}) {}

void ReducedMotion::update() {
    const bool isReduced = isAskedFor_ || animationsAreOff_ || animationsAreInstant_;
    if (isReduced_ != isReduced) {
        isReduced_ = isReduced;
        if (changed_) {
            changed_(isReduced);
        }
    }
}

}  // namespace tarnwick::platform
