// SPDX-License-Identifier: MIT
// Hot keys that a test presses, refuses and takes away.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/hot_keys.h"
#include "platform/testing/answers.h"

namespace tarnwick::platform::testing {

/// An event as the system delivers it.
class ScriptedHotKeyEvent final : public HotKeyEvent {
 public:
    explicit ScriptedHotKeyEvent(HotKeyID id) : id_(id) {}
    /// An event whose identifier cannot be read: hotKeyID answers `status`.
    static ScriptedHotKeyEvent unreadable(std::int32_t status) {
        ScriptedHotKeyEvent event{HotKeyID{}};
        event.status_ = status;
        return event;
    }

    std::int32_t hotKeyID(HotKeyID& id) const override {
        if (status_ == hot_key_status::kSuccess) {
            id = id_;
        }
        return status_;
    }

 private:
    HotKeyID id_;
    std::int32_t status_ = hot_key_status::kSuccess;
};

/// Grants everything unless a test sets other answers. The calls are recorded as "install",
/// "remove", "register KEY MODIFIERS" and "unregister". Main thread. Requires: the object outlives
/// its handles.
class ScriptedHotKeys final : public HotKeys {
 public:
    struct HotKey {
        std::uint32_t keyCode;
        std::uint32_t modifiers;
        HotKeyID id;

        bool operator==(const HotKey&) const = default;
    };

    /// What installing the handler answers; a failure gives no handle.
    Answers<std::int32_t> installStatus{hot_key_status::kSuccess};
    /// What registering answers; a failure gives no handle.
    Answers<std::int32_t> registerStatus{hot_key_status::kSuccess};
    /// Whether a registration that succeeds gives a handle.
    bool givesHandles = true;
    CallRecord calls;
    /// Number of calls of withdrawRegistration().
    int withdrawals = 0;

    HandlerResult installEventHandler(HotKeyHandler handler) override;
    RegistrationResult registerEventHotKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                           HotKeyID id) override;
    void withdrawRegistration() override { ++withdrawals; }
    void setRegistrationChanged(std::function<void()> changed) override;

    bool hasHandler() const { return handler_ != nullptr; }
    /// Whether a function for changed registrations is set.
    bool hasRegistrationObserver() const { return changed_ != nullptr; }
    /// What is registered now, in the order of registration.
    std::vector<HotKey> held() const;

    /// Presses the only registered hot key and returns the handler's answer. Absent if not exactly
    /// one hot key is registered, or no handler is installed.
    std::optional<std::int32_t> press();
    /// Calls the handler with any event, or with none. Absent without a handler.
    std::optional<std::int32_t> send(const HotKeyEvent* event);
    /// Reports that the outcome of the last registration may have changed. The test itself scripts
    /// the new outcome.
    void changeRegistration();

 private:
    class Handle;

    HotKeyHandler handler_;
    std::function<void()> changed_;
    /// Each with the number of its handle.
    std::vector<std::pair<int, HotKey>> held_;
    int lastHandle_ = 0;
};

}  // namespace tarnwick::platform::testing
