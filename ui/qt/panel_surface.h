// SPDX-License-Identifier: MIT
// What kind of window the panel is, which depends on what places windows on the screen.
#pragma once

#include <QString>
#include <QWindow>
#include <string>
#include <vector>

namespace tarnwick::qt {

enum class PanelSurface {
    /// A pop-up as large as the panel, which the program places on the screen (X11).
    popUp,
    /// A transparent surface over the whole work area, above all windows, with the panel drawn in
    /// it: a program under a compositor cannot place a window, but it can draw where it likes.
    layer,
    /// The same as a maximised window, for a compositor that has no layers.
    maximized,
    /// A window as large as the panel, which the compositor places.
    window,
};

/// The kind for a toolkit's `platform` ("xcb", "wayland") and the names of the global objects of
/// its compositor. `hasLayerLibrary`: this build can ask for layers.
PanelSurface panelSurface(const QString& platform, const std::vector<std::string>& globals,
                          bool hasLayerLibrary);

/// The kind for the running application. Under a compositor it takes one round trip. Main thread.
PanelSurface panelSurface();

/// True if the panel is drawn in a transparent window that covers the work area.
constexpr bool coversWorkArea(PanelSurface surface) {
    return surface == PanelSurface::layer || surface == PanelSurface::maximized;
}

/// Makes a window that was never shown a layer over the work area that takes all keys. Requires:
/// panelSurface() is `layer`.
void putOnLayer(QWindow& window);

}  // namespace tarnwick::qt
