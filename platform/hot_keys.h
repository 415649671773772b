// SPDX-License-Identifier: MIT
// Shortcuts that work whichever program is in front.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace tarnwick::platform {

/// Result codes of the operations below, with the numbers that macOS uses.
namespace hot_key_status {
inline constexpr std::int32_t kSuccess = 0;
/// The combination is registered already, by this or another program.
inline constexpr std::int32_t kExists = -9878;
/// The event was not handled; it goes on to the next handler.
inline constexpr std::int32_t kEventNotHandled = -9874;
/// The desktop has not decided yet: it may be asking its user.
inline constexpr std::int32_t kPending = 1;
/// The system has no such operation.
inline constexpr std::int32_t kUnimplemented = -4;
}  // namespace hot_key_status

/// Modifiers of a hot key, as bits of one number.
namespace hot_key_modifier {
inline constexpr std::uint32_t kCommand = 0x100;
inline constexpr std::uint32_t kShift = 0x200;
inline constexpr std::uint32_t kOption = 0x800;
inline constexpr std::uint32_t kControl = 0x1000;
}  // namespace hot_key_modifier

/// Names a hot key in its events.
struct HotKeyID {
    /// A four-character code as a big-endian number.
    std::uint32_t signature = 0;
    std::uint32_t id = 0;

    bool operator==(const HotKeyID&) const = default;
};

/// An event of class "keyb" and kind 5: a hot key was pressed.
class HotKeyEvent {
 public:
    virtual ~HotKeyEvent() = default;

    /// `GetEventParameter` "----" of type "hkid". Writes the identifier to `id` and returns
    /// kSuccess; on failure leaves `id` unchanged and returns the error code.
    virtual std::int32_t hotKeyID(HotKeyID& id) const = 0;
};

/// What a program does with an event, on the main thread. The pointer is null when the system
/// calls without an event. Returns kSuccess when it was handled.
using HotKeyHandler = std::function<std::int32_t(const HotKeyEvent*)>;

/// Something that the program holds from the system. The destructor gives it back. Main thread.
class HotKeyHandle {
 public:
    virtual ~HotKeyHandle() = default;

    /// A short text that tells handles apart, for logs.
    virtual std::string description() const = 0;
};

/// Main thread. Requires: the object outlives its handles.
class HotKeys {
 public:
    virtual ~HotKeys() = default;

    struct HandlerResult {
        std::int32_t status = hot_key_status::kSuccess;
        /// Removes the handler when destroyed (`RemoveEventHandler`); null on failure.
        std::unique_ptr<HotKeyHandle> handle{};
    };
    /// `InstallEventHandler` on the application's event target, for presses of hot keys alone.
    virtual HandlerResult installEventHandler(HotKeyHandler handler) = 0;

    struct RegistrationResult {
        /// kSuccess, kExists, kPending, or another number if it was refused for another reason.
        std::int32_t status = hot_key_status::kSuccess;
        /// Unregisters the hot key when destroyed (`UnregisterEventHotKey`); null on failure.
        std::unique_ptr<HotKeyHandle> handle{};
    };
    /// `RegisterEventHotKey` on the application's event target without options. `keyCode` is a
    /// virtual key code of the platform keyboard, `modifiers` the sum of hot_key_modifier bits.
    virtual RegistrationResult registerEventHotKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                                   HotKeyID id) = 0;

    /// Withdraws the last registration if it is still pending: tells a desktop that still asks its
    /// user, or waits for keys. Existing handles are unaffected.
    virtual void withdrawRegistration() = 0;

    /// What the desktop calls the keys of the last registration, where its user has chosen others
    /// than those asked for; else empty.
    virtual std::string otherKeys() const { return {}; }

    /// Sets the function to call on the main thread when the last registration may now have another
    /// outcome: the desktop has asked its user and decided, its user has chosen other keys, or the
    /// keyboard's layout has moved the modifiers. A new registration then gives the current outcome
    /// at once. The function is never called from inside the operations above.
    virtual void setRegistrationChanged(std::function<void()> changed) = 0;
};

/// For a system without shortcuts: every operation fails.
class NullHotKeys final : public HotKeys {
 public:
    HandlerResult installEventHandler(HotKeyHandler) override {
        return {hot_key_status::kUnimplemented, nullptr};
    }
    RegistrationResult registerEventHotKey(std::uint32_t, std::uint32_t, HotKeyID) override {
        return {hot_key_status::kUnimplemented, nullptr};
    }
    void withdrawRegistration() override {}
    void setRegistrationChanged(std::function<void()>) override {}
};

}  // namespace tarnwick::platform
