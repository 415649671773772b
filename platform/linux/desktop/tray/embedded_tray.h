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

/// Made only while the session has no StatusNotifier host. It follows trays coming and going by
/// itself. Main thread.
class EmbeddedTray final {
 public:
    /// `trayChanged` is called when a tray has come or gone.
    EmbeddedTray(const std::vector<MenuEntry>& entries, std::function<void()> click,
                 std::function<void()> middleClick, std::function<void()> trayChanged);

    /// Where the tray shows the item, in the screen's coordinates; none while no tray does.
    std::optional<QRect> place() const;
    /// There is a tray that shows it.
    bool inTray() const;
    /// Draws only what differs from the icon that is shown: most changes are of the text alone.
    void setIcon(const IconPainter& painter, const ItemIcon& icon);
    /// The tool tip, and what screen readers say.
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
