// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/keyboard/wayland_keyboard_layout.h"

#include <QFile>
#include <cstring>
#include <wayland-client.h>

#include "platform/linux/desktop/keyboard/key_text.h"
namespace tarnwick::platform {
namespace {

/// The first version of a seat that can release its keyboard. Every current compositor has it.
constexpr std::uint32_t kSeatVersion = 3;

}  // namespace

/// The protocol's objects, in their own event queue.
class WaylandKeyboardLayout::Keyboard final {
 public:
    explicit Keyboard(wl_display* display)
        : display_(display), queue_(wl_display_create_queue(display)) {
        // The wrapper puts new objects into the queue before their first event can arrive.
        auto* wrapper = static_cast<wl_display*>(wl_proxy_create_wrapper(display));
        wl_proxy_set_queue(reinterpret_cast<wl_proxy*>(wrapper), queue_);
        registry_ = wl_display_get_registry(wrapper);
        wl_proxy_wrapper_destroy(wrapper);
        wl_registry_add_listener(registry_, &kRegistryListener, this);
        // The first answer names the seat, the second one its keyboard, the third one the keymap.
        for (int answer = 0; answer < 3; ++answer) {
            wl_display_roundtrip_queue(display_, queue_);
        }
    }
    ~Keyboard() {
        dropKeyboard();
        if (seat_ != nullptr) {
            wl_seat_destroy(seat_);
        }
        wl_registry_destroy(registry_);
        wl_event_queue_destroy(queue_);
    }
    Keyboard(const Keyboard&) = delete;
    Keyboard& operator=(const Keyboard&) = delete;

    void takeEvents() { wl_display_dispatch_queue_pending(display_, queue_); }

    KeymapInUse keymapInUse() const {
        const XkbContext context = makeServerContext();
        // To read past the end of a file that is shorter than it should be would end the program.
        if (!context || !keymapFile_ || keymapFile_->size() < keymapSize_) {
            return {};
        }
        uchar* text = keymapFile_->map(0, keymapSize_, QFileDevice::MapPrivateOption);
        if (text == nullptr) {
            return {};
        }
        const auto* begin = reinterpret_cast<const char*>(text);
        XkbKeymap keymap(xkb_keymap_new_from_buffer(
            context.get(), begin, ::strnlen(begin, static_cast<std::size_t>(keymapSize_)),
            XKB_KEYMAP_FORMAT_TEXT_V1, XKB_KEYMAP_COMPILE_NO_FLAGS));
        keymapFile_->unmap(text);
        return {std::move(keymap), layout_};
    }

 private:
    static Keyboard& self(void* data) { return *static_cast<Keyboard*>(data); }

    void dropKeyboard() {
        if (keyboard_ != nullptr) {
            wl_keyboard_release(keyboard_);
        }
        keyboard_ = nullptr;
        keymapFile_.reset();
        layout_ = 0;
    }

    static void global(void* data, wl_registry* registry, std::uint32_t name, const char* interface,
                       std::uint32_t version) {
        Keyboard& keyboard = self(data);
        // A session has one seat; where there are more, the first one is the user's.
        if (std::strcmp(interface, wl_seat_interface.name) == 0 && version >= kSeatVersion &&
            keyboard.seat_ == nullptr) {
            keyboard.seat_ = static_cast<wl_seat*>(
                wl_registry_bind(registry, name, &wl_seat_interface, kSeatVersion));
            wl_seat_add_listener(keyboard.seat_, &kSeatListener, data);
        }
    }

    static void capabilities(void* data, wl_seat* seat, std::uint32_t capabilities) {
        Keyboard& keyboard = self(data);
        if ((capabilities & WL_SEAT_CAPABILITY_KEYBOARD) == 0) {
            keyboard.dropKeyboard();
        } else if (keyboard.keyboard_ == nullptr) {
            keyboard.keyboard_ = wl_seat_get_keyboard(seat);
            wl_keyboard_add_listener(keyboard.keyboard_, &kKeyboardListener, data);
        }
    }

    static void keymap(void* data, wl_keyboard*, std::uint32_t format, std::int32_t descriptor,
                       std::uint32_t size) {
        auto file = std::make_unique<QFile>();
        const bool isOpen =
            file->open(descriptor, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle);
        const bool isKeymap = isOpen && format == WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1;
        self(data).keymapFile_ = isKeymap ? std::move(file) : nullptr;
        self(data).keymapSize_ = size;
    }
    static void modifiers(void* data, wl_keyboard*, std::uint32_t, std::uint32_t, std::uint32_t,
                          std::uint32_t, std::uint32_t group) {
        self(data).layout_ = group;
    }

    static constexpr wl_registry_listener kRegistryListener = {
        .global = &global,
        .global_remove = [](void*, wl_registry*, std::uint32_t) {},
    };
    static constexpr wl_seat_listener kSeatListener = {
        .capabilities = &capabilities,
        .name = [](void*, wl_seat*, const char*) {},
    };
    static constexpr wl_keyboard_listener kKeyboardListener = {
        .keymap = &keymap,
        .enter = [](void*, wl_keyboard*, std::uint32_t, wl_surface*, wl_array*) {},
        .leave = [](void*, wl_keyboard*, std::uint32_t, wl_surface*) {},
        .key = [](void*, wl_keyboard*, std::uint32_t, std::uint32_t, std::uint32_t,
                  std::uint32_t) {},
        .modifiers = &modifiers,
        .repeat_info = nullptr,
    };

    wl_display* display_;
    wl_event_queue* queue_;
    wl_registry* registry_ = nullptr;
    wl_seat* seat_ = nullptr;
    wl_keyboard* keyboard_ = nullptr;
    /// The text of the keymap from the compositor, with a zero at its end. Not compiled, because it
    /// is read rarely and its compiled form is large. Null if there is none.
    std::unique_ptr<QFile> keymapFile_;
    qint64 keymapSize_ = 0;
    /// Number of the keymap's layout in use.
    std::uint32_t layout_ = 0;
};

WaylandKeyboardLayout::WaylandKeyboardLayout(wl_display* display)
    : keyboard_(display != nullptr ? std::make_unique<Keyboard>(display) : nullptr) {}

WaylandKeyboardLayout::~WaylandKeyboardLayout() = default;

void WaylandKeyboardLayout::takeEvents() {
    if (keyboard_) {
        keyboard_->takeEvents();
    }
}

KeymapInUse WaylandKeyboardLayout::keymapInUse() {
    takeEvents();
    return keyboard_ ? keyboard_->keymapInUse() : KeymapInUse();
}

}  // namespace tarnwick::platform
