#include "platform/linux/desktop/session/color_scheme.h"

#include <utility>

namespace tarnwick::platform {
namespace {

// 0: no preference, 1: dark, 2: light.
constexpr uint kDark = 1;

bool saysDark(const QVariant& value) {
    return value.metaType() == QMetaType::fromType<uint>() && value.toUInt() == kDark;
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

}  // namespace tarnwick::platform
