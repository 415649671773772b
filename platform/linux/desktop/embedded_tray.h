// The item in the older kind of tray, where the program docks a small window of its own (X11).
#pragma once

#include <QMenu>
#include <QRect>
#include <QSystemTrayIcon>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "platform/linux/desktop/dbus_menu.h"
#include "platform/linux/desktop/item_picture.h"

namespace tarnwick::platform {

/// Made only while the session has no StatusNotifier host. It follows trays coming and going by
/// itself. Main thread.
class EmbeddedTray final {
 public:
    EmbeddedTray(const std::vector<MenuEntry>& entries, std::function<void()> click,
                 std::function<void()> middleClick);

    /// Where the tray shows the item, in the screen's coordinates; none while no tray does.
    std::optional<QRect> place() const;
    /// There is a tray that shows it.
    bool inTray() const;
    void setIcon(const IconPainter& painter, const ItemIcon& icon);
    /// The tool tip.
    void setText(const QString& text);

 private:
    QMenu menu_;
    QSystemTrayIcon tray_;
};

}  // namespace tarnwick::platform
