// SPDX-License-Identifier: MIT
// Hot keys on an X server of the test's own. The test sees every event that comes for them.
#pragma once

#include <QDeadlineTimer>
#include <cstdint>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <poll.h>
#include <utility>
#include <vector>

#include "platform/linux/desktop/keyboard/x11_hot_keys.h"
#include "platform/qt/x11.h"
#include "platform/testing/manual_dispatch.h"
#include "tests/platform/linux/desktop/keyboard/virtual_keys.h"
#include "tests/platform/linux/desktop/private_display.h"

namespace tarnwick::platform::testing {

inline constexpr std::uint32_t kSignature = 0x54524E57;
inline constexpr std::uint32_t kCommandL = 1;

// X11 key codes.
inline constexpr std::uint8_t kX11L = 46;
inline constexpr std::uint8_t kX11M = 58;
inline constexpr std::uint8_t kSuper = 133;
inline constexpr std::uint8_t kRightSuper = 134;
inline constexpr std::uint8_t kShift = 50;
inline constexpr std::uint8_t kControl = 37;
inline constexpr std::uint8_t kAlt = 64;
inline constexpr std::uint8_t kScrollLock = 78;
/// A key of the usual keymap that exists on no keyboard and means Super.
inline constexpr std::uint8_t kVirtualSuper = 206;

inline constexpr int kMod3 = 5;
inline constexpr int kMod4 = 6;
inline const std::vector<std::uint16_t> kLocks = {0, XCB_MOD_MASK_LOCK, XCB_MOD_MASK_2,
                                                  XCB_MOD_MASK_LOCK | XCB_MOD_MASK_2};

class X11HotKeysTest : public ::testing::Test {
 protected:
    explicit X11HotKeysTest(int screens = 1, const QStringList& options = {})
        : display(screens, options), own(display.name()), other(display.name()) {
        hotKeys = std::make_unique<X11HotKeys>(own.connection(), dispatch);
        hotKeys->setRegistrationChanged([this] { ++changes; });
        auto result = hotKeys->installEventHandler([this](const HotKeyEvent* event) {
            HotKeyID id;
            EXPECT_EQ(event->hotKeyID(id), hot_key_status::kSuccess);
            EXPECT_EQ(id.signature, kSignature);
            presses.push_back(id.id);
            return hot_key_status::kSuccess;
        });
        EXPECT_EQ(result.status, hot_key_status::kSuccess);
        handler = std::move(result.handle);
    }

    HotKeys::RegistrationResult add(std::uint32_t keyCode, std::uint32_t modifiers) {
        return hotKeys->registerEventHotKey(keyCode, modifiers, {kSignature, kCommandL});
    }

    /// Passes on every event that has come.
    void takeEvents() {
        while (const x11::Reply<xcb_generic_event_t> event{xcb_poll_for_event(own.connection())}) {
            if (event->response_type == XCB_KEY_PRESS) {
                ++keyPresses;
            }
            usedUp += hotKeys->handle(*event) ? 1 : 0;
        }
    }
    bool takeEventsUntil(const std::function<bool()>& condition) {
        const QDeadlineTimer deadline(30'000);
        while (!condition()) {
            if (deadline.hasExpired()) {
                return false;
            }
            pollfd readable = {xcb_get_file_descriptor(own.connection()), POLLIN, 0};
            ::poll(&readable, 1, 20);
            takeEvents();
        }
        return true;
    }
    /// Waits for an answer of the server: every event that it sent before has then come.
    void settle() {
        own.sync();
        takeEvents();
    }
    /// The presses that the program reports for a stroke.
    std::vector<std::uint32_t> pressesOf(const std::vector<std::uint8_t>& held,
                                         std::uint8_t stroked) {
        presses.clear();
        other.stroke(held, stroked);
        settle();
        return presses;
    }
    /// Whether no program holds the key with these modifiers, on any screen, with any of the locks.
    bool isFree(std::uint16_t modifiers) {
        // The server must know first which keys the program has given back.
        own.sync();
        return other.couldGrab(kX11L, modifiers, kLocks);
    }
    /// Lets the program notice a change of the keyboard.
    void takeKeyboardChange() {
        EXPECT_TRUE(takeEventsUntil([this] { return dispatch.mainPending() > 0; }));
        dispatch.runMain();
    }

    PrivateDisplay display;
    DisplayClient own;
    DisplayClient other;
    ManualDispatch dispatch;
    std::unique_ptr<X11HotKeys> hotKeys;
    std::unique_ptr<HotKeyHandle> handler;
    std::vector<std::uint32_t> presses;
    /// Events of keys that came to this connection.
    int keyPresses = 0;
    /// How many events the program kept from the toolkit.
    int usedUp = 0;
    int changes = 0;
};

}  // namespace tarnwick::platform::testing
