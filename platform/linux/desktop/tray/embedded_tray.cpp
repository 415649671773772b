// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/tray/embedded_tray.h"

#include <QAction>
#include <QApplication>
#include <QIcon>
#include <QPixmap>
#include <QWidget>
#include <array>
#include <qpa/qplatformnativeinterface.h>
#include <utility>

#include "platform/qt/x11.h"

namespace tarnwick::platform {
namespace {

constexpr std::array kSizes = {16, 22, 24, 32, 48};

}  // namespace

EmbeddedTray::EmbeddedTray(const std::vector<MenuEntry>& entries, std::function<void()> click,
                           std::function<void()> middleClick, std::function<void()> trayChanged) {
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
    trayChanged_.setSingleShot(true);
    QObject::connect(&trayChanged_, &QTimer::timeout, &tray_,
                     [this, trayChanged = std::move(trayChanged)] {
                         nameWindow();
                         trayChanged();
                     });
    if (QGuiApplication::platformName() == "xcb") {
        // Only the toolkit's part for X servers has this signal.
        QObject::connect(QGuiApplication::platformNativeInterface(),
                         SIGNAL(systemTrayWindowChanged(QScreen*)), &trayChanged_, SLOT(start()));
    }
}

bool EmbeddedTray::inTray() const {
    // The toolkit misses the end of a tray that goes while it looks for one.
    xcb_connection_t* connection = x11::connection();
    return tray_.isVisible() && connection != nullptr &&
           x11::selectionOwner(connection, "_NET_SYSTEM_TRAY_S0") != XCB_NONE;
}

bool isPlaced(const QRect& icon) {
    // Where a tray has the window before it has laid out its icons.
    return !icon.topLeft().isNull();
}

std::optional<QRect> EmbeddedTray::place() const {
    const QRect place = inTray() ? tray_.geometry() : QRect();
    return place.isValid() && isPlaced(place) ? std::optional(place) : std::nullopt;
}

void EmbeddedTray::setIcon(const IconPainter& painter, const ItemIcon& icon) {
    if (std::exchange(shown_, icon) == icon) {
        return;
    }
    QIcon pictures;
    for (const int size : kSizes) {
        pictures.addPixmap(QPixmap::fromImage(squarePicture(painter, icon, size)));
    }
    tray_.setIcon(pictures);
    tray_.show();
}

void EmbeddedTray::setText(const QString& text) {
    tray_.setToolTip(text);
    nameWindow();
}

/// The docked window is the toolkit's own, without a name for screen readers.
void EmbeddedTray::nameWindow() const {
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (widget->inherits("QSystemTrayIconSys")) {
            widget->setAccessibleName(tray_.toolTip());
        }
    }
}

}  // namespace tarnwick::platform
