// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/tray/tray_presentation.h"

#include <array>

namespace tarnwick::platform {
namespace {

struct KnownHost {
    std::string_view program;
    TrayPresentation presentation;
};

// plasmashell (kded), swaybar and all unlisted hosts shrink a wide picture to a square or refuse
// it. MATE's applet can show labels, but then hides the icon. Of the hosts
// that know of attention, waybar marks the item with a ground that is as red as the icon, and
// GNOME's extension does nothing but ask for another icon.
constexpr std::array kKnownHosts = {
    KnownHost{"ayatana-indicator-application-service",
              {.text = TextPlace::label, .iconFromFile = true}},
    KnownHost{"gnome-shell", {.text = TextPlace::label}},
    // Plasma's tray, by version.
    KnownHost{"kded5", {.marksAttention = true}},
    KnownHost{"kded6", {.marksAttention = true}},
    KnownHost{"lxqt-panel", {.fetches = HostFetches::namedButTitle}},
    KnownHost{
        "notification-area-applet",
        {.text = TextPlace::picture, .pictureHeight = 22, .fetches = HostFetches::namedButTitle}},
    KnownHost{
        "waybar",
        {.text = TextPlace::picture, .pictureHeight = 44, .fetches = HostFetches::namedButTitle}},
    // This program runs the plug-ins of xfce4-panel.
    KnownHost{"wrapper-2.0", {.fetches = HostFetches::everything}},
    KnownHost{"xfce4-panel", {.fetches = HostFetches::everything}},
};

}  // namespace

TrayPresentation trayPresentation(std::string_view program) {
    for (const KnownHost& host : kKnownHosts) {
        if (host.program == program) {
            return host.presentation;
        }
    }
    return {};
}

}  // namespace tarnwick::platform
