// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/session/portal_settings.h"

#include <QDBusVariant>
#include <utility>

#include "platform/linux/desktop/session/bus_calls.h"
#include "platform/linux/desktop/session/portal_introduction.h"

namespace tarnwick::platform {
namespace {

constexpr auto kService = "org.freedesktop.portal.Desktop";
constexpr auto kPath = "/org/freedesktop/portal/desktop";
constexpr auto kInterface = "org.freedesktop.portal.Settings";

/// Removes all variants around the value: Read returns one more than the change signal.
QVariant unwrapped(QVariant value) {
    while (value.metaType() == QMetaType::fromType<QDBusVariant>()) {
        value = variantIn(value);
    }
    return value;
}

}  // namespace

PortalSettings::PortalSettings(QDBusConnection bus, const std::vector<Setting>& settings)
    : bus_(std::move(bus)),
      portal_(bus_, kService, [this](const QString& owner) { portalChanged(owner); }) {
    for (const Setting& setting : settings) {
        followed_.push_back({setting});
    }
    portal_.hear(
        {.path = kPath, .interface = kInterface, .member = "SettingChanged", .signature = "ssv"},
        [this](const QDBusMessage& signal) { settingChanged(signal); });
}

void PortalSettings::portalChanged(const QString& owner) {
    // The first request starts a missing portal; a portal that has ended is not started again.
    if (!std::exchange(hasBegun_, true) || !owner.isEmpty()) {
        begin();
    }
}

void PortalSettings::begin() {
    introduceToPortal(bus_, this, [this] {
        for (Followed& followed : followed_) {
            ask(followed);
        }
    });
}

void PortalSettings::ask(Followed& followed) {
    QDBusMessage call = QDBusMessage::createMethodCall(kService, kPath, kInterface, "Read");
    call.setArguments({followed.setting.space, followed.setting.key});
    callAsync(bus_, call, "v", this,
              [&followed, changes = followed.changes](const BusArguments& answer) {
                  if (answer && changes == followed.changes) {
                      followed.setting.heard(unwrapped(answer->first()));
                  }
              });
}

void PortalSettings::settingChanged(const QDBusMessage& signal) {
    const QVariantList arguments = signal.arguments();
    for (Followed& followed : followed_) {
        if (arguments[0] == followed.setting.space && arguments[1] == followed.setting.key) {
            ++followed.changes;
            followed.setting.heard(unwrapped(arguments[2]));
        }
    }
}

}  // namespace tarnwick::platform
