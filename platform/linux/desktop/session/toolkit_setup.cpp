// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/session/toolkit_setup.h"

#include <QApplication>
#include <QFont>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>
#include <wayland-client-core.h>

#include "platform/linux/desktop/session/xsettings.h"
#include "platform/linux/events/standard_error.h"
#include "platform/qt/x11.h"

namespace tarnwick::platform {
namespace {

/// What GNOME, Xfce and MATE start with, points.
constexpr double kCommonPointSize = 11;
/// The largest property asked for, in words of four bytes; daemons keep a few kilobytes.
constexpr std::uint32_t kLongestProperty = 64 * 1024;

/// Content of the settings property; empty when no daemon keeps one.
std::vector<std::byte> settingsProperty(xcb_connection_t* connection) {
    const xcb_window_t owner = x11::selectionOwner(connection, "_XSETTINGS_S0");
    if (owner == XCB_NONE) {
        return {};
    }
    const xcb_atom_t settings = x11::atom(connection, "_XSETTINGS_SETTINGS");
    const auto cookie =
        xcb_get_property(connection, 0, owner, settings, settings, 0, kLongestProperty);
    const x11::Reply<xcb_get_property_reply_t> property(
        xcb_get_property_reply(connection, cookie, nullptr));
    if (!property) {
        return {};
    }
    const auto* bytes = static_cast<const std::byte*>(xcb_get_property_value(property.get()));
    return {bytes, bytes + xcb_get_property_value_length(property.get())};
}

std::optional<InterfaceFont> desktopFont() {
    xcb_connection_t* connection = x11::connection();
    if (connection == nullptr) {
        return std::nullopt;
    }
    const auto description = xsettingsText(settingsProperty(connection), "Gtk/FontName");
    return description ? interfaceFont(*description) : std::nullopt;
}

// Where other messages of the toolkit go while it starts.
QtMessageHandler usualMessages = nullptr;

void endWhereFatal(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    if (type != QtFatalMsg) {
        usualMessages(type, context, message);
        return;
    }
    std::string line = "the toolkit cannot start: " + message.section('\n', 0, 0).toStdString();
    if (!qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")) {
        line += " Wayland needs the package qt6-wayland.";
    }
    notice(line);
    std::_Exit(EXIT_FAILURE);
}

}  // namespace

bool displayAnswers() {
    if (qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        return true;
    }
    if (!qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")) {
        if (wl_display* compositor = wl_display_connect(nullptr)) {
            wl_display_disconnect(compositor);
            return true;
        }
    }
    if (qEnvironmentVariableIsEmpty("DISPLAY")) {
        return false;
    }
    xcb_connection_t* server = xcb_connect(nullptr, nullptr);
    const bool answers = xcb_connection_has_error(server) == 0;
    xcb_disconnect(server);
    return answers;
}

ToolkitEnvironment::ToolkitEnvironment() {
    usualMessages = qInstallMessageHandler(endWhereFatal);
    for (const char* name : {"XDG_CURRENT_DESKTOP", "DESKTOP_SESSION", "KDE_FULL_SESSION",
                             "GNOME_DESKTOP_SESSION_ID", "QT_QPA_PLATFORMTHEME"}) {
        if (const char* value = std::getenv(name)) {
            hidden_.emplace_back(name, value);
            ::unsetenv(name);
        }
    }
}

ToolkitEnvironment::~ToolkitEnvironment() {
    qInstallMessageHandler(usualMessages);
    for (const auto& [name, value] : hidden_) {
        ::setenv(name, value.c_str(), 1);
    }
}

void applyInterfaceFont() {
    QFont font = QApplication::font();
    font.setPointSizeF(kCommonPointSize);
    if (const auto desktop = desktopFont()) {
        font.setFamily(QString::fromStdString(desktop->family));
        font.setPointSizeF(desktop->pointSize);
    }
    QApplication::setFont(font);
}

}  // namespace tarnwick::platform
