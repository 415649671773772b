#include "platform/linux/desktop/session/portal_settings.h"

#include <utility>

#include "platform/linux/desktop/session/bus_calls.h"
#include "platform/linux/desktop/session/portal_introduction.h"

namespace tarnwick::platform {
namespace {

constexpr auto kService = "org.freedesktop.portal.Desktop";
constexpr auto kPath = "/org/freedesktop/portal/desktop";
constexpr auto kInterface = "org.freedesktop.portal.Settings";

/// Read wraps its value once more than the change signal does.
QVariant unwrapped(QVariant value) {
    while (value.metaType() == QMetaType::fromType<QDBusVariant>()) {
        value = value.value<QDBusVariant>().variant();
    }
    return value;
}

}  // namespace

PortalSettings::PortalSettings(QDBusConnection bus, const std::vector<Setting>& settings)
    : bus_(std::move(bus)) {
    for (const Setting& setting : settings) {
        followed_.push_back({setting});
    }
    if (!bus_.isConnected()) {
        return;
    }
    // The library looks the slot's types up by name, and knows this one only once it is in use.
    qRegisterMetaType<QDBusVariant>();
    // No sender is named: the library would ask the bus for its owner and wait for the answer.
    bus_.connect("", kPath, kInterface, "SettingChanged", this,
                 SLOT(settingChanged(QString, QString, QDBusVariant)));
    portalWatcher_.setConnection(bus_);
    portalWatcher_.setWatchMode(QDBusServiceWatcher::WatchForRegistration);
    portalWatcher_.addWatchedService(kService);
    connect(&portalWatcher_, &QDBusServiceWatcher::serviceRegistered, this, [this] { begin(); });
    begin();
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
    callAsync(bus_, call, this,
              [&followed, changes = followed.changes](const QDBusMessage& answer) {
                  if (answer.type() == QDBusMessage::ReplyMessage && changes == followed.changes) {
                      followed.setting.heard(unwrapped(answer.arguments().value(0)));
                  }
              });
}

void PortalSettings::settingChanged(const QString& space, const QString& key,
                                    const QDBusVariant& value) {
    for (Followed& followed : followed_) {
        if (space == followed.setting.space && key == followed.setting.key) {
            ++followed.changes;
            followed.setting.heard(unwrapped(value.variant()));
        }
    }
}

}  // namespace tarnwick::platform
