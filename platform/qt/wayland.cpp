// SPDX-License-Identifier: MIT
#include "platform/qt/wayland.h"

#include <QGuiApplication>
#include <qpa/qplatformnativeinterface.h>
#include <wayland-client.h>

namespace tarnwick::wayland {
namespace {

void keepName(void* names, wl_registry*, std::uint32_t, const char* interface, std::uint32_t) {
    static_cast<std::vector<std::string>*>(names)->emplace_back(interface);
}

void ignoreRemoval(void*, wl_registry*, std::uint32_t) {}

constexpr wl_registry_listener kListener = {.global = keepName, .global_remove = ignoreRemoval};

wl_display* connection() {
    // Only later versions of the toolkit give their connection through the public interface.
    QPlatformNativeInterface* native = QGuiApplication::platformNativeInterface();
    if (native == nullptr || !QGuiApplication::platformName().startsWith("wayland")) {
        return nullptr;
    }
    return static_cast<wl_display*>(native->nativeResourceForIntegration("wl_display"));
}

}  // namespace

std::vector<std::string> globals() {
    std::vector<std::string> names;
    wl_display* display = connection();
    if (display == nullptr) {
        return names;
    }
    // A queue of its own, so that no event of the toolkit's is taken here.
    wl_event_queue* queue = wl_display_create_queue(display);
    auto* wrapper = static_cast<wl_display*>(wl_proxy_create_wrapper(display));
    wl_proxy_set_queue(reinterpret_cast<wl_proxy*>(wrapper), queue);
    wl_registry* registry = wl_display_get_registry(wrapper);
    wl_proxy_wrapper_destroy(wrapper);
    wl_registry_add_listener(registry, &kListener, &names);
    wl_display_roundtrip_queue(display, queue);
    wl_registry_destroy(registry);
    wl_event_queue_destroy(queue);
    return names;
}

}  // namespace tarnwick::wayland
