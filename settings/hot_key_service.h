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

/// What the service runs on; both outlive it, and the dispatch what is queued on it.
struct HotKeyServiceEnvironment {
    platform::HotKeys& hotKeys;
    platform::Dispatch& dispatch;
    platform::Logger logger{};

    static HotKeyServiceEnvironment shared();
};

/// The hot_key_modifier bits of stored modifier flags; other flags are ignored. A negative value
/// is a fatal error.
std::uint32_t carbonModifiers(std::int64_t flags);

/// Main thread only. There is one live service in the process; one made later takes its place.
class HotKeyService {
 public:
    using RegistrationState = tarnwick::RegistrationState;

    /// "TRNW": presses of hot keys with another signature are somebody else's.
    static constexpr std::uint32_t kSignature = 0x54524E57;
    static constexpr platform::HotKeyID kHotKeyID{kSignature, 1};

    /// Presses call `onTrigger` (may be empty) from the main queue, never from inside the system's
    /// event handling.
    explicit HotKeyService(std::function<void()> onTrigger, HotKeyServiceEnvironment environment =
                                                                HotKeyServiceEnvironment::shared());
    HotKeyService(const HotKeyService&) = delete;
    HotKeyService& operator=(const HotKeyService&) = delete;
    ~HotKeyService();

    /// Registers a stored shortcut in place of the one before. `inactive` for what is no valid
    /// shortcut; `conflict` when the combination is registered already, by whomever; `failed` after
    /// any other refusal. A valid shortcut whose key code has more than 32 bits is a fatal error.
    RegistrationState registerShortcut(std::int64_t keyCode, std::int64_t modifiers);
    /// Gives the hot key back; does nothing without one.
    void unregister();
    /// Registers the shortcut of `settings`, or none where it is not valid, and writes the outcome
    /// to its registration state.
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
    /// Expires with the service; the process's reference to it is weak.
    std::shared_ptr<HotKeyService*> self_ = std::make_shared<HotKeyService*>(this);
};

}  // namespace tarnwick
