#include "platform/linux/desktop/keyboard/wayland_keyboard_layout.h"

#include <algorithm>
#include <cstring>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <wayland-client.h>

#include "platform/linux/desktop/keyboard/key_text.h"

namespace tarnwick::platform {
namespace {

/// The newest version of a seat that the listeners below know.
constexpr std::uint32_t kSeatVersion = 5;

/// A keymap as the compositor hands it over: a file with its text, which ends with a zero. Kept
/// as it is, since it is read rarely and large when compiled.
class KeymapFile final {
 public:
    KeymapFile() = default;
    KeymapFile(int descriptor, std::size_t size) : descriptor_(descriptor), size_(size) {}
    KeymapFile(const KeymapFile&) = delete;
    KeymapFile& operator=(KeymapFile&& other) noexcept {
        std::swap(descriptor_, other.descriptor_);
        std::swap(size_, other.size_);
        return *this;
    }
    ~KeymapFile() {
        if (descriptor_ >= 0) {
            ::close(descriptor_);
        }
    }

    XkbKeymap compile(xkb_context& context) const {
        struct stat status {};
        if (descriptor_ < 0 || size_ == 0 || ::fstat(descriptor_, &status) != 0 ||
            static_cast<std::uint64_t>(status.st_size) < size_) {
            return nullptr;
        }
        void* text = ::mmap(nullptr, size_, PROT_READ, MAP_PRIVATE, descriptor_, 0);
        if (text == MAP_FAILED) {
            return nullptr;
        }
        const std::size_t length = ::strnlen(static_cast<const char*>(text), size_);
        XkbKeymap keymap(xkb_keymap_new_from_buffer(&context, static_cast<const char*>(text),
                                                    length, XKB_KEYMAP_FORMAT_TEXT_V1,
                                                    XKB_KEYMAP_COMPILE_NO_FLAGS));
        ::munmap(text, size_);
        return keymap;
    }

 private:
    int descriptor_ = -1;
    std::size_t size_ = 0;
};

}  // namespace

/// The objects of the protocol, in a queue of their own.
class WaylandKeyboardLayout::Keyboard final {
 public:
    explicit Keyboard(wl_display* display)
        : display_(display), queue_(wl_display_create_queue(display)) {
        // What is made through the wrapper is in the queue before the first event can come.
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
        dropSeat();
        wl_registry_destroy(registry_);
        wl_event_queue_destroy(queue_);
    }
    Keyboard(const Keyboard&) = delete;
    Keyboard& operator=(const Keyboard&) = delete;

    void takeEvents() { wl_display_dispatch_queue_pending(display_, queue_); }

    const KeymapFile& keymap() const { return keymap_; }
    std::uint32_t layout() const { return layout_; }

 private:
    static Keyboard& self(void* data) { return *static_cast<Keyboard*>(data); }

    void dropKeyboard() {
        if (keyboard_ == nullptr) {
            return;
        }
        if (wl_keyboard_get_version(keyboard_) >= WL_KEYBOARD_RELEASE_SINCE_VERSION) {
            wl_keyboard_release(keyboard_);
        } else {
            wl_keyboard_destroy(keyboard_);
        }
        keyboard_ = nullptr;
        keymap_ = KeymapFile();
        layout_ = 0;
    }

    void dropSeat() {
        dropKeyboard();
        if (seat_ == nullptr) {
            return;
        }
        if (wl_seat_get_version(seat_) >= WL_SEAT_RELEASE_SINCE_VERSION) {
            wl_seat_release(seat_);
        } else {
            wl_seat_destroy(seat_);
        }
        seat_ = nullptr;
    }

    static void global(void* data, wl_registry* registry, std::uint32_t name, const char* interface,
                       std::uint32_t version) {
        Keyboard& keyboard = self(data);
        // A session has one seat; where there are more, the first one is the user's.
        if (std::strcmp(interface, wl_seat_interface.name) != 0 || keyboard.seat_ != nullptr) {
            return;
        }
        keyboard.seatName_ = name;
        keyboard.seat_ = static_cast<wl_seat*>(
            wl_registry_bind(registry, name, &wl_seat_interface, std::min(version, kSeatVersion)));
        wl_seat_add_listener(keyboard.seat_, &kSeatListener, data);
    }
    static void globalRemove(void* data, wl_registry*, std::uint32_t name) {
        Keyboard& keyboard = self(data);
        if (keyboard.seat_ != nullptr && keyboard.seatName_ == name) {
            keyboard.dropSeat();
        }
    }

    static void capabilities(void* data, wl_seat* seat, std::uint32_t capabilities) {
        Keyboard& keyboard = self(data);
        const bool hasKeyboard = (capabilities & WL_SEAT_CAPABILITY_KEYBOARD) != 0;
        if (!hasKeyboard) {
            keyboard.dropKeyboard();
        } else if (keyboard.keyboard_ == nullptr) {
            keyboard.keyboard_ = wl_seat_get_keyboard(seat);
            wl_keyboard_add_listener(keyboard.keyboard_, &kKeyboardListener, data);
        }
    }
    static void seatName(void*, wl_seat*, const char*) {}

    static void keymap(void* data, wl_keyboard*, std::uint32_t format, std::int32_t file,
                       std::uint32_t size) {
        self(data).keymap_ = KeymapFile(file, size);
        if (format != WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1) {
            self(data).keymap_ = KeymapFile();
        }
    }
    static void modifiers(void* data, wl_keyboard*, std::uint32_t, std::uint32_t, std::uint32_t,
                          std::uint32_t, std::uint32_t group) {
        self(data).layout_ = group;
    }
    static void enter(void*, wl_keyboard*, std::uint32_t, wl_surface*, wl_array*) {}
    static void leave(void*, wl_keyboard*, std::uint32_t, wl_surface*) {}
    static void key(void*, wl_keyboard*, std::uint32_t, std::uint32_t, std::uint32_t,
                    std::uint32_t) {}
    static void repeatInfo(void*, wl_keyboard*, std::int32_t, std::int32_t) {}

    static constexpr wl_registry_listener kRegistryListener = {
        .global = &global,
        .global_remove = &globalRemove,
    };
    static constexpr wl_seat_listener kSeatListener = {
        .capabilities = &capabilities,
        .name = &seatName,
    };
    static constexpr wl_keyboard_listener kKeyboardListener = {
        .keymap = &keymap,
        .enter = &enter,
        .leave = &leave,
        .key = &key,
        .modifiers = &modifiers,
        .repeat_info = &repeatInfo,
    };

    wl_display* display_;
    wl_event_queue* queue_;
    wl_registry* registry_ = nullptr;
    wl_seat* seat_ = nullptr;
    std::uint32_t seatName_ = 0;
    wl_keyboard* keyboard_ = nullptr;
    KeymapFile keymap_;
    /// Which of the keymap's layouts is in use.
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

XkbKeymap WaylandKeyboardLayout::compileKeymap() {
    takeEvents();
    const XkbContext context = makeServerContext();
    return keyboard_ && context ? keyboard_->keymap().compile(*context) : nullptr;
}

std::optional<std::string> WaylandKeyboardLayout::displayText(std::uint16_t virtualKeyCode) {
    const XkbKeymap keymap = compileKeymap();
    return keymap ? keyText(*keymap, keyboard_->layout(), virtualKeyCode) : std::nullopt;
}

xkb_keysym_t WaylandKeyboardLayout::keysym(std::uint16_t virtualKeyCode) {
    const XkbKeymap keymap = compileKeymap();
    return keymap ? keyKeysym(*keymap, keyboard_->layout(), virtualKeyCode) : XKB_KEY_NoSymbol;
}

}  // namespace tarnwick::platform
