#include "platform/linux/desktop/session/interface_font.h"

#include <QApplication>
#include <QFont>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <vector>
#include <xcb/xcb.h>

#include "platform/linux/desktop/session/xsettings.h"

namespace tarnwick::platform {
namespace {

/// What GNOME, Xfce and MATE start with, points.
constexpr double kCommonPointSize = 11;
/// The largest property asked for, in words of four bytes; daemons keep a few kilobytes.
constexpr std::uint32_t kLongestProperty = 64 * 1024;

struct Free {
    void operator()(void* pointer) const { std::free(pointer); }
};
template <class T>
using Reply = std::unique_ptr<T, Free>;

xcb_atom_t atom(xcb_connection_t* connection, const char* name) {
    const auto cookie =
        xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(std::strlen(name)), name);
    const Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection, cookie, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

/// Content of the settings property; empty when no daemon keeps one.
std::vector<std::byte> settingsProperty(xcb_connection_t* connection) {
    const xcb_atom_t selection = atom(connection, "_XSETTINGS_S0");
    const xcb_atom_t settings = atom(connection, "_XSETTINGS_SETTINGS");
    const Reply<xcb_get_selection_owner_reply_t> owner(xcb_get_selection_owner_reply(
        connection, xcb_get_selection_owner(connection, selection), nullptr));
    if (!owner || owner->owner == XCB_WINDOW_NONE) {
        return {};
    }
    const auto cookie =
        xcb_get_property(connection, 0, owner->owner, settings, settings, 0, kLongestProperty);
    const Reply<xcb_get_property_reply_t> property(
        xcb_get_property_reply(connection, cookie, nullptr));
    if (!property) {
        return {};
    }
    const auto* bytes = static_cast<const std::byte*>(xcb_get_property_value(property.get()));
    return {bytes, bytes + xcb_get_property_value_length(property.get())};
}

std::optional<InterfaceFont> desktopFont() {
    const auto* x11 = qApp->nativeInterface<QNativeInterface::QX11Application>();
    if (!x11 || !x11->connection()) {
        return std::nullopt;
    }
    const auto description = xsettingsText(settingsProperty(x11->connection()), "Gtk/FontName");
    return description ? interfaceFont(*description) : std::nullopt;
}

}  // namespace

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
