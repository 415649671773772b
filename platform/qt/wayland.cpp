// SPDX-License-Identifier: MIT
#include "platform/qt/wayland.h"

#include <QGuiApplication>
#include <qpa/qplatformnativeinterface.h>
#include <wayland-client.h>

namespace tarnwick::wayland {
namespace {

/// The first version of Mutter's shell, whose requests hold no objects of the toolkit's here.
constexpr auto kShell = "gtk_shell1";
constexpr std::uint32_t kShellVersion = 1;
constexpr std::uint32_t kSetStartupId = 1;
const wl_interface* kAnyTypes[2] = {};
const wl_message kShellRequests[] = {{"get_gtk_surface", "no", kAnyTypes},
                                     {"set_startup_id", "?s", kAnyTypes},
                                     {"system_bell", "?o", kAnyTypes}};
const wl_message kShellEvents[] = {{"capabilities", "u", kAnyTypes}};
const wl_interface kShellInterface = {kShell, kShellVersion, 3, kShellRequests, 1, kShellEvents};

struct Global {
    std::uint32_t number;
    std::string name;
};

/// The compositor's global objects. A queue of its own, so that no event of the toolkit's is taken
/// here.
class Globals final {
 public:
    explicit Globals(wl_display* display) : queue_(wl_display_create_queue(display)) {
        auto* wrapper = static_cast<wl_display*>(wl_proxy_create_wrapper(display));
        wl_proxy_set_queue(reinterpret_cast<wl_proxy*>(wrapper), queue_);
        registry_ = wl_display_get_registry(wrapper);
        wl_proxy_wrapper_destroy(wrapper);
        wl_registry_add_listener(registry_, &kListener, &found_);
        wl_display_roundtrip_queue(display, queue_);
    }
    ~Globals() {
        wl_registry_destroy(registry_);
        wl_event_queue_destroy(queue_);
    }
    Globals(const Globals&) = delete;
    Globals& operator=(const Globals&) = delete;

    const std::vector<Global>& found() const { return found_; }
    /// The caller destroys it before this.
    wl_proxy* bind(const Global& global, const wl_interface& interface, std::uint32_t version) {
        return static_cast<wl_proxy*>(
            wl_registry_bind(registry_, global.number, &interface, version));
    }

 private:
    static void keep(void* found, wl_registry*, std::uint32_t number, const char* interface,
                     std::uint32_t) {
        static_cast<std::vector<Global>*>(found)->push_back({number, interface});
    }
    static void ignoreRemoval(void*, wl_registry*, std::uint32_t) {}
    static constexpr wl_registry_listener kListener = {.global = keep,
                                                       .global_remove = ignoreRemoval};

    wl_event_queue* queue_;
    wl_registry* registry_;
    std::vector<Global> found_;
};

wl_display* connection() {
    // Only later versions of the toolkit give their connection through the public interface.
    QPlatformNativeInterface* native = QGuiApplication::platformNativeInterface();
    if (native == nullptr || !QGuiApplication::platformName().startsWith("wayland")) {
        return nullptr;
    }
    return static_cast<wl_display*>(native->nativeResourceForIntegration("wl_display"));
}

}  // namespace

std::vector<std::string> globals(wl_display* display) {
    std::vector<std::string> names;
    if (display != nullptr) {
        const Globals globals(display);
        for (const Global& each : globals.found()) {
            names.push_back(each.name);
        }
    }
    return names;
}

std::vector<std::string> globals() {
    return globals(connection());
}

void endStartup(wl_display* display, const std::string& token) {
    if (display == nullptr) {
        return;
    }
    Globals globals(display);
    for (const Global& each : globals.found()) {
        if (each.name == kShell) {
            wl_proxy* shell = globals.bind(each, kShellInterface, kShellVersion);
            wl_proxy_marshal(shell, kSetStartupId, token.c_str());
            wl_proxy_destroy(shell);
            wl_display_flush(display);
            return;
        }
    }
}

void endStartup(const std::string& token) {
    endStartup(connection(), token);
}

}  // namespace tarnwick::wayland
