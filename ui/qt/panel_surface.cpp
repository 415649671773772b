// SPDX-License-Identifier: MIT
#include "ui/qt/panel_surface.h"

#include <QGuiApplication>
#include <algorithm>

#include "platform/qt/wayland.h"

#ifdef TARNWICK_LAYER_SHELL
#include <LayerShellQt/Window>
#endif

namespace tarnwick::qt {
namespace {

#ifdef TARNWICK_LAYER_SHELL
constexpr bool kHasLayerLibrary = true;
#else
constexpr bool kHasLayerLibrary = false;
#endif

}  // namespace

PanelSurface panelSurface(const QString& platform, const std::vector<std::string>& globals,
                          bool hasLayerLibrary) {
    const auto has = [&](const char* name) { return std::ranges::count(globals, name) > 0; };
    if (!platform.startsWith("wayland")) {
        return PanelSurface::popUp;
    }
    if (hasLayerLibrary && has("zwlr_layer_shell_v1")) {
        return PanelSurface::layer;
    }
    // Mutter's own protocol. Mutter shows a maximised window of any program above the others and
    // as large as the work area; a compositor that tiles windows may do neither.
    if (has("gtk_shell1") && !has("zwlr_layer_shell_v1")) {
        return PanelSurface::maximized;
    }
    return PanelSurface::window;
}

PanelSurface panelSurface() {
    return panelSurface(QGuiApplication::platformName(), wayland::globals(), kHasLayerLibrary);
}

void putOnLayer([[maybe_unused]] QWindow& window) {
#ifdef TARNWICK_LAYER_SHELL
    using Layer = LayerShellQt::Window;
    Layer* layer = Layer::get(&window);
    layer->setLayer(Layer::LayerTop);
    layer->setAnchors(Layer::Anchors(Layer::AnchorTop) | Layer::AnchorBottom | Layer::AnchorLeft |
                      Layer::AnchorRight);
    // Keeps clear of the bars, and needs no room of its own.
    layer->setExclusiveZone(0);
    // Some compositors otherwise leave the keys with the window below.
    layer->setKeyboardInteractivity(Layer::KeyboardInteractivityExclusive);
    layer->setScope("tarnwick-panel");
    // The compositor knows on which screen the user works.
    layer->setScreenConfiguration(Layer::ScreenFromCompositor);
#endif
}

}  // namespace tarnwick::qt
