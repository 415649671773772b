// The status item as an object on the session bus, in the protocol of StatusNotifierItem.
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QPoint>
#include <QString>
#include <QVariantMap>
#include <functional>
#include <optional>

#include "platform/linux/desktop/tray/dbus_types.h"
#include "platform/linux/desktop/tray/tray_presentation.h"

namespace tarnwick::platform {

/// What hosts can see of the item.
struct NotifierContent {
    /// Title and tool tip, also read out by screen readers.
    QString text;
    IconPixmaps icon;
    /// Path of a picture file, for hosts that draw no pixmaps; empty elsewhere.
    QString iconName;
    /// The live text where the host draws a label. When absent the property does not exist at
    /// all: some hosts hide the icon as soon as it does.
    std::optional<QString> label;

    bool operator==(const NotifierContent&) const = default;
};

/// Presses that hosts report.
struct NotifierActions {
    std::function<void()> activate;
    std::function<void()> secondaryActivate;
    /// The press that follows may bring a window before the others with this token of the
    /// compositor; empty where none is used.
    std::function<void(const QString& token)> activationToken;
};

/// Main thread. A host that hears a signal fetches the content again, which wakes both programs,
/// so a signal goes out only for what changed.
class StatusNotifierItem final : public QDBusVirtualObject {
    Q_OBJECT

 public:
    static constexpr auto kPath = "/StatusNotifierItem";
    static constexpr auto kInterface = "org.kde.StatusNotifierItem";

    /// `menuPath` is where the item's menu is exported on the same bus.
    StatusNotifierItem(QDBusConnection bus, QString menuPath, NotifierActions actions);
    ~StatusNotifierItem() override;

    /// Announces what changed, in as few signals as a host that `fetches` like that needs.
    void setContent(NotifierContent content, HostFetches fetches = HostFetches::named);

    QString introspect(const QString& path) const override;
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

 private:
    QVariantMap properties() const;
    void emitSignal(const QString& name, const QVariantList& arguments = {});

    QDBusConnection bus_;
    QString menuPath_;
    NotifierActions actions_;
    NotifierContent content_;
};

}  // namespace tarnwick::platform
