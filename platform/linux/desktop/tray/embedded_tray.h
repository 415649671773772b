// SPDX-License-Identifier: MIT
// The item in the older kind of tray, where the program docks a small window of its own (X11).
#pragma once

#include <QMenu>
#include <QRect>
#include <QSystemTrayIcon>
#include <QTimer>
#include <functional>
#include <optional>
#include <vector>

#include "platform/linux/desktop/tray/dbus_menu.h"
#include "platform/linux/desktop/tray/item_picture.h"

namespace tarnwick::platform {

/// Whether a docked window's rectangle on the screen is a place that its tray has given it. Some
/// trays take windows in at the screen's corner and move them later.
bool isPlaced(const QRect& icon);

/// Exists only while the session has no StatusNotifier host. Follows trays by itself as they appear
/// and disappear. Main thread.
class EmbeddedTray final {
 public:
    /// `trayChanged` is called when a tray has come or gone.
    EmbeddedTray(const std::vector<MenuEntry>& entries, std::function<void()> click,
                 std::function<void()> middleClick, std::function<void()> trayChanged);

    /// Where the tray shows the item, in the screen's coordinates; none while no tray does, or
    /// while the tray has not placed the icon yet.
    std::optional<QRect> place() const;
    /// Whether a tray shows the item.
    bool inTray() const;
    /// Draws the icon only if it differs from the current one, because most changes affect only the
    /// text.
    void setIcon(const IconPainter& painter, const ItemIcon& icon);
    /// Sets the tool tip and the text for screen readers.
    void setText(const QString& text);

 private:
    void nameWindow() const;

    QMenu menu_;
    QSystemTrayIcon tray_;
    std::optional<ItemIcon> shown_;
    /// Started when a tray has come or gone; fires when the toolkit is done with that.
    QTimer trayChanged_;
};

}  // namespace tarnwick::platform
