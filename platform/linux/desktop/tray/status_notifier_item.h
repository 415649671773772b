// SPDX-License-Identifier: MIT
// The status item as an object on the session bus, in the protocol of StatusNotifierItem.
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QPoint>
#include <QString>
#include <QTimer>
#include <QVariantMap>
#include <functional>
#include <optional>

#include "platform/linux/desktop/tray/dbus_types.h"
#include "platform/linux/desktop/tray/tray_presentation.h"

namespace tarnwick::platform {

/// The item's content for hosts.
struct NotifierContent {
    /// Title and tool tip, also read out by screen readers.
    QString text;
    IconPixmaps icon;
    /// Path of a picture file, for hosts that draw no pixmaps; empty elsewhere.
    QString iconName;
    /// The live text where the host draws a label. When absent the property does not exist at
    /// all: some hosts hide the icon as soon as it does.
    std::optional<QString> label;
    /// Asks the host to mark the item.
    bool needsAttention = false;

    bool operator==(const NotifierContent&) const = default;
};

/// Presses that hosts report.
struct NotifierActions {
    /// `place`: where the host says that the item is.
    std::function<void(const QPoint& place)> activate;
    std::function<void()> secondaryActivate;
    /// Delivers a token of the compositor: the next press may bring a window to the front with it.
    /// May be empty if tokens are not used.
    std::function<void(const QString& token)> activationToken;
};

/// Main thread. Emits a signal only for changed content: a host that receives one fetches the
/// content again, which wakes both programs.
class StatusNotifierItem final : public QDBusVirtualObject {
    Q_OBJECT

 public:
    static constexpr auto kPath = "/StatusNotifierItem";
    static constexpr auto kInterface = "org.kde.StatusNotifierItem";

    /// `menuPath` is where the item's menu is exported on the same bus.
    StatusNotifierItem(QDBusConnection bus, QString menuPath, NotifierActions actions);
    ~StatusNotifierItem() override;

    /// Sets the content and announces the changes in as few signals as a host with these `fetches`
    /// needs.
    void setContent(NotifierContent content, HostFetches fetches = HostFetches::named);

    QString introspect(const QString& path) const override;
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

 private:
    QVariantMap properties() const;
    void announceLabel(const QString& label);
    void emitSignal(const QString& name, const QVariantList& arguments = {});

    QDBusConnection bus_;
    QString menuPath_;
    NotifierActions actions_;
    NotifierContent content_;
    /// Fires once a host that asked for the item's description has it.
    mutable QTimer described_;
};

}  // namespace tarnwick::platform
