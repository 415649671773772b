#include "platform/linux/desktop/tray_presentation.h"

#include <array>

namespace tarnwick::platform {
namespace {

struct KnownHost {
    std::string_view program;
    TrayPresentation presentation;
};

// xfce4-panel, lxqt-panel, plasmashell (kded) and swaybar shrink a wide picture to a square or
// refuse it, so they are as good as unknown. MATE's applet has labels too, but drops the icon for
// one.
constexpr std::array kKnownHosts = {
    KnownHost{"waybar", {.text = TextPlace::picture, .pictureHeight = 44}},
    KnownHost{"notification-area-applet", {.text = TextPlace::picture, .pictureHeight = 22}},
    KnownHost{"ayatana-indicator-application-service",
              {.text = TextPlace::label, .iconFromFile = true}},
    KnownHost{"gnome-shell", {.text = TextPlace::label}},
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
