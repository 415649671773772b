// SPDX-License-Identifier: MIT
#include "tests/platform/linux/desktop/private_display.h"

#include <xcb/xinput.h>
#include <xcb/xtest.h>

#include "platform/linux/desktop/keyboard/x11_xkb.h"
#include "platform/qt/x11.h"

namespace tarnwick::platform::testing {
namespace {

constexpr int kLimitMilliseconds = 30'000;
/// Hands are slower than the server's clock ticks.
constexpr std::uint32_t kHandMilliseconds = 2;
/// The keyboard that stands for all the others.
constexpr xcb_input_device_id_t kCoreKeyboard = 3;

}  // namespace

DisplayClient::DisplayClient(const QString& name)
    : connection_(xcb_connect(name.toUtf8().constData(), nullptr)) {
    xcb_xkb_use_extension(connection_, XCB_XKB_MAJOR_VERSION, XCB_XKB_MINOR_VERSION);
    sync();
}

DisplayClient::~DisplayClient() {
    xcb_disconnect(connection_);
}

bool DisplayClient::grab(std::uint8_t key, std::uint16_t modifiers, xcb_window_t root) {
    const x11::Reply<xcb_generic_error_t> error(xcb_request_check(
        connection_, xcb_grab_key_checked(connection_, 0, root, modifiers, key, XCB_GRAB_MODE_ASYNC,
                                          XCB_GRAB_MODE_ASYNC)));
    return !error;
}

void DisplayClient::ungrab(std::uint8_t key, std::uint16_t modifiers, xcb_window_t root) {
    xcb_ungrab_key(connection_, key, root, modifiers);
    sync();
}

bool DisplayClient::grabByExtension(std::uint8_t key, std::uint16_t modifiers, xcb_window_t root) {
    const x11::Reply<xcb_input_xi_query_version_reply_t> version(xcb_input_xi_query_version_reply(
        connection_, xcb_input_xi_query_version(connection_, 2, 2), nullptr));
    const std::uint32_t held = modifiers;
    const std::uint32_t events = XCB_INPUT_XI_EVENT_MASK_KEY_PRESS;
    const x11::Reply<xcb_input_xi_passive_grab_device_reply_t> reply(
        xcb_input_xi_passive_grab_device_reply(
            connection_,
            xcb_input_xi_passive_grab_device(
                connection_, XCB_CURRENT_TIME, root, XCB_CURSOR_NONE, key, kCoreKeyboard, 1, 1,
                XCB_INPUT_GRAB_TYPE_KEYCODE, XCB_INPUT_GRAB_MODE_22_ASYNC,
                XCB_INPUT_GRAB_MODE_22_ASYNC, XCB_INPUT_GRAB_OWNER_NO_OWNER, &events, &held),
            nullptr));
    return reply && reply->num_modifiers == 0;
}

void DisplayClient::ungrabByExtension(std::uint8_t key, std::uint16_t modifiers,
                                      xcb_window_t root) {
    const std::uint32_t held = modifiers;
    xcb_input_xi_passive_ungrab_device(connection_, root, key, kCoreKeyboard, 1,
                                       XCB_INPUT_GRAB_TYPE_KEYCODE, &held);
    sync();
}

bool DisplayClient::couldGrab(std::uint8_t key, std::uint16_t modifiers,
                              const std::vector<std::uint16_t>& locks) {
    bool could = true;
    for (const xcb_window_t root : roots()) {
        for (const std::uint16_t lock : locks) {
            const auto all = static_cast<std::uint16_t>(modifiers | lock);
            could = grab(key, all, root) && could;
            ungrab(key, all, root);
        }
    }
    return could;
}

void DisplayClient::pressKey(std::uint8_t key) {
    xcb_test_fake_input(connection_, XCB_KEY_PRESS, key, kHandMilliseconds, XCB_WINDOW_NONE, 0, 0,
                        0);
    sync();
}

void DisplayClient::releaseKey(std::uint8_t key) {
    xcb_test_fake_input(connection_, XCB_KEY_RELEASE, key, kHandMilliseconds, XCB_WINDOW_NONE, 0, 0,
                        0);
    sync();
}

void DisplayClient::stroke(const std::vector<std::uint8_t>& held, std::uint8_t key) {
    for (const std::uint8_t each : held) {
        pressKey(each);
    }
    pressKey(key);
    releaseKey(key);
    for (const std::uint8_t each : held) {
        releaseKey(each);
    }
}

void DisplayClient::setLocks(std::uint8_t modifiers) {
    xcb_xkb_latch_lock_state(connection_, XCB_XKB_ID_USE_CORE_KBD, 0xFF, modifiers, 0, 0, 0, 0, 0);
    sync();
}

void DisplayClient::setLayout(std::uint8_t layout) {
    xcb_xkb_latch_lock_state(connection_, XCB_XKB_ID_USE_CORE_KBD, 0, 0, 1, layout, 0, 0, 0);
    sync();
}

void DisplayClient::setModifierOf(std::uint8_t key, int modifier) {
    const x11::Reply<xcb_get_modifier_mapping_reply_t> before(xcb_get_modifier_mapping_reply(
        connection_, xcb_get_modifier_mapping(connection_), nullptr));
    const std::size_t rows = 8;
    const std::size_t row = before->keycodes_per_modifier;
    const xcb_keycode_t* keys = xcb_get_modifier_mapping_keycodes(before.get());
    // One place more in each row.
    std::vector<xcb_keycode_t> after(rows * (row + 1), 0);
    for (std::size_t i = 0; i < rows; ++i) {
        for (std::size_t j = 0; j < row; ++j) {
            const xcb_keycode_t each = keys[i * row + j];
            after[i * (row + 1) + j] = each == key ? xcb_keycode_t{0} : each;
        }
        if (static_cast<int>(i) == modifier) {
            after[i * (row + 1) + row] = key;
        }
    }
    const x11::Reply<xcb_set_modifier_mapping_reply_t> reply(xcb_set_modifier_mapping_reply(
        connection_,
        xcb_set_modifier_mapping(connection_, static_cast<std::uint8_t>(row + 1), after.data()),
        nullptr));
}

void DisplayClient::sync() {
    const x11::Reply<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
}

PrivateDisplay::PrivateDisplay(int screens, const QStringList& options) {
    QStringList arguments = {"-displayfd", "1", "-nolisten", "tcp", "-noreset"};
    for (int i = 0; i < screens; ++i) {
        arguments << "-screen" << QString::number(i) << "320x200x24";
    }
    server_.setStandardErrorFile(QProcess::nullDevice());
    server_.start("Xvfb", arguments + options);
    while (!server_.canReadLine() && server_.waitForReadyRead(kLimitMilliseconds)) {
    }
    name_ = ":" + QString::fromUtf8(server_.readLine()).trimmed();
    setLayouts("us");
}

PrivateDisplay::~PrivateDisplay() {
    end();
}

void PrivateDisplay::setLayouts(const QString& layouts) const {
    QProcess::execute(
        "setxkbmap", {"-display", name_, "-rules", "evdev", "-model", "pc105", "-layout", layouts});
}

void PrivateDisplay::end() {
    if (server_.state() != QProcess::NotRunning) {
        server_.kill();
        server_.waitForFinished();
    }
}

}  // namespace tarnwick::platform::testing
