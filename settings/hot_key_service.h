// SPDX-License-Identifier: MIT
// The global shortcut: one hot key at a time, and what a press of it does.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "platform/desktop.h"
#include "platform/dispatch.h"
#include "platform/hot_keys.h"
#include "platform/log.h"
#include "settings/user_settings.h"

namespace tarnwick {

/// What the service runs on. Both objects must outlive the service, and the dispatch also the work
/// that is queued on it.
struct HotKeyServiceEnvironment {
    platform::HotKeys& hotKeys;
    platform::Dispatch& dispatch;
    platform::Logger logger{};

    static HotKeyServiceEnvironment shared();
};

/// The hot_key_modifier bits of stored modifier flags; other flags are ignored. A negative value
/// is a fatal error.
std::uint32_t carbonModifiers(std::int64_t flags);

/// Only one service is live in the process: a newer one replaces it. Main thread only.
class HotKeyService {
 public:
    using RegistrationState = tarnwick::RegistrationState;

    /// "TRNW". Presses of hot keys with another signature belong to another program.
    static constexpr std::uint32_t kSignature = 0x54524E57;
    static constexpr platform::HotKeyID kHotKeyID{kSignature, 1};

    /// Presses call `onTrigger` (may be empty) from the main queue, never from inside the system's
    /// event handling.
    explicit HotKeyService(std::function<void()> onTrigger, HotKeyServiceEnvironment environment =
                                                                HotKeyServiceEnvironment::shared());
    HotKeyService(const HotKeyService&) = delete;
    HotKeyService& operator=(const HotKeyService&) = delete;
    ~HotKeyService();

    /// Registers a stored shortcut in place of the previous one. `inactive` if the shortcut is not
    /// valid, or the desktop has not decided yet; `conflict` if the combination is already
    /// registered, by any program; `failed` after any other refusal. A valid shortcut with a key
    /// code of more than 32 bits is a fatal error.
    RegistrationState registerShortcut(std::int64_t keyCode, std::int64_t modifiers);
    /// Gives the hot key back; does nothing without one.
    void unregister();
    /// Registers the shortcut of `settings` if it is valid, otherwise none, and writes the outcome
    /// to the registration state of `settings`.
    void applyShortcut(UserSettings& settings);

    /// Opens or closes the panel by clicking the status item's button for the user. False when
    /// there is no button.
    static bool toggleMenuBarPanel(platform::StatusItem& statusItem,
                                   const platform::Logger& logger = platform::Logger());

 private:
    void installEventHandler();
    static std::int32_t hotKeyPressed(const platform::HotKeyEvent* event,
                                      platform::Dispatch& dispatch);
    static std::weak_ptr<HotKeyService*>& liveService();

    HotKeyServiceEnvironment environment_;
    std::unique_ptr<platform::HotKeyHandle> hotKeyRef_;
    /// Null when the handler could not be installed.
    std::unique_ptr<platform::HotKeyHandle> eventHandlerRef_;
    std::function<void()> onTrigger_;
    /// Expires with the service. The process refers to the service through a weak pointer to this.
    std::shared_ptr<HotKeyService*> self_ = std::make_shared<HotKeyService*>(this);
};

}  // namespace tarnwick
