#include "platform/linux/desktop/embedded_tray.h"

#include <QAction>
#include <QIcon>
#include <QPixmap>
#include <array>
#include <utility>

namespace tarnwick::platform {
namespace {

constexpr std::array kSizes = {16, 22, 24, 32, 48};

}  // namespace

EmbeddedTray::EmbeddedTray(const std::vector<MenuEntry>& entries, std::function<void()> click,
                           std::function<void()> middleClick) {
    for (const MenuEntry& entry : entries) {
        if (entry.label.isEmpty()) {
            menu_.addSeparator();
            continue;
        }
        QAction* action = menu_.addAction(entry.label);
        QObject::connect(action, &QAction::triggered, action, entry.chosen, Qt::QueuedConnection);
    }
    tray_.setContextMenu(&menu_);
    QObject::connect(
        &tray_, &QSystemTrayIcon::activated, &tray_,
        [click = std::move(click),
         middleClick = std::move(middleClick)](QSystemTrayIcon::ActivationReason reason) {
            // The second press of a quick pair is reported as a double click alone.
            if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::DoubleClick) {
                click();
            } else if (reason == QSystemTrayIcon::MiddleClick) {
                middleClick();
            }
        });
}

bool EmbeddedTray::inTray() const {
    return tray_.isVisible() && QSystemTrayIcon::isSystemTrayAvailable();
}

std::optional<QRect> EmbeddedTray::place() const {
    const QRect place = inTray() ? tray_.geometry() : QRect();
    return place.isValid() ? std::optional(place) : std::nullopt;
}

void EmbeddedTray::setIcon(const IconPainter& painter, const ItemIcon& icon) {
    QIcon pictures;
    for (const int size : kSizes) {
        pictures.addPixmap(QPixmap::fromImage(squarePicture(painter, icon, size)));
    }
    tray_.setIcon(pictures);
    tray_.show();
}

void EmbeddedTray::setText(const QString& text) {
    tray_.setToolTip(text);
}

}  // namespace tarnwick::platform
