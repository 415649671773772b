#include "platform/linux/desktop/color_scheme.h"

#include <utility>

#include "platform/linux/desktop/bus_calls.h"
#include "platform/linux/desktop/portal_introduction.h"

namespace tarnwick::platform {
namespace {

constexpr auto kService = "org.freedesktop.portal.Desktop";
constexpr auto kPath = "/org/freedesktop/portal/desktop";
constexpr auto kInterface = "org.freedesktop.portal.Settings";
constexpr auto kSpace = "org.freedesktop.appearance";
constexpr auto kKey = "color-scheme";

// 0: no preference, 1: dark, 2: light.
constexpr uint kDark = 1;

bool saysDark(QVariant value) {
    // Read wraps its value once more than the change signal does.
    while (value.metaType() == QMetaType::fromType<QDBusVariant>()) {
        value = value.value<QDBusVariant>().variant();
    }
    return value.metaType() == QMetaType::fromType<uint>() && value.toUInt() == kDark;
}

}  // namespace

ColorScheme::ColorScheme(QDBusConnection bus, std::function<void(bool dark)> changed)
    : bus_(std::move(bus)), changed_(std::move(changed)) {
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

void ColorScheme::begin() {
    introduceToPortal(bus_, this, [this] { ask(); });
}

void ColorScheme::ask() {
    QDBusMessage call = QDBusMessage::createMethodCall(kService, kPath, kInterface, "Read");
    call.setArguments({QString(kSpace), QString(kKey)});
    const int heard = heard_;
    callAsync(bus_, call, this, [this, heard](const QDBusMessage& answer) {
        if (answer.type() == QDBusMessage::ReplyMessage && heard == heard_) {
            set(saysDark(answer.arguments().value(0)));
        }
    });
}

void ColorScheme::settingChanged(const QString& space, const QString& key,
                                 const QDBusVariant& value) {
    if (space == kSpace && key == kKey) {
        ++heard_;
        set(saysDark(value.variant()));
    }
}

void ColorScheme::set(bool dark) {
    if (dark_ != dark) {
        dark_ = dark;
        if (changed_) {
            changed_(dark);
        }
    }
}

}  // namespace tarnwick::platform
