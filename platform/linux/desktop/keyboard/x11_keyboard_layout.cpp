#include "platform/linux/desktop/keyboard/x11_keyboard_layout.h"

#include <xkbcommon/xkbcommon-x11.h>

#include "platform/linux/desktop/keyboard/key_text.h"

namespace tarnwick::platform {

X11KeyboardLayout::X11KeyboardLayout(xcb_connection_t* connection)
    : connection_(connection),
      hasKeymap_(xkb_x11_setup_xkb_extension(connection, XKB_X11_MIN_MAJOR_XKB_VERSION,
                                             XKB_X11_MIN_MINOR_XKB_VERSION,
                                             XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr,
                                             nullptr, nullptr) == 1) {}

std::optional<std::string> X11KeyboardLayout::displayText(std::uint16_t virtualKeyCode) {
    std::optional<std::string> text;
    useKeymap([&](xkb_keymap& keymap, xkb_layout_index_t layout) {
        text = keyText(keymap, layout, virtualKeyCode);
    });
    return text;
}

xkb_keysym_t X11KeyboardLayout::keysym(std::uint16_t virtualKeyCode) {
    xkb_keysym_t keysym = XKB_KEY_NoSymbol;
    useKeymap([&](xkb_keymap& keymap, xkb_layout_index_t layout) {
        keysym = keyKeysym(keymap, layout, virtualKeyCode);
    });
    return keysym;
}

void X11KeyboardLayout::useKeymap(const std::function<void(xkb_keymap&, xkb_layout_index_t)>& use) {
    if (!hasKeymap_) {
        return;
    }
    const XkbContext context = makeServerContext();
    const std::int32_t keyboard = xkb_x11_get_core_keyboard_device_id(connection_);
    if (!context || keyboard < 0) {
        return;
    }
    const XkbKeymap keymap(xkb_x11_keymap_new_from_device(context.get(), connection_, keyboard,
                                                          XKB_KEYMAP_COMPILE_NO_FLAGS));
    if (!keymap) {
        return;
    }
    const XkbState state(xkb_x11_state_new_from_device(keymap.get(), connection_, keyboard));
    if (state) {
        use(*keymap, xkb_state_serialize_layout(state.get(), XKB_STATE_LAYOUT_EFFECTIVE));
    }
}

}  // namespace tarnwick::platform
