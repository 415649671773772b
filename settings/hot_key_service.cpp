// SPDX-License-Identifier: MIT
#include "settings/hot_key_service.h"

#include <array>
#include <cstdlib>
#include <limits>
#include <string>
#include <utility>

#include "platform/platform.h"
#include "settings/shortcut.h"

namespace tarnwick {
namespace {

namespace status = platform::hot_key_status;

struct ModifierRow {
    std::int64_t flag;
    std::uint32_t carbon;
};

constexpr std::array kModifierRows = {
    ModifierRow{modifier_flag::kCommand, platform::hot_key_modifier::kCommand},
    ModifierRow{modifier_flag::kShift, platform::hot_key_modifier::kShift},
    ModifierRow{modifier_flag::kOption, platform::hot_key_modifier::kOption},
    ModifierRow{modifier_flag::kControl, platform::hot_key_modifier::kControl},
};

std::uint32_t hotKeyCode(std::int64_t keyCode) {
    if (keyCode > std::numeric_limits<std::uint32_t>::max()) {
        std::abort();
    }
    return static_cast<std::uint32_t>(keyCode);
}

}  // namespace

HotKeyServiceEnvironment HotKeyServiceEnvironment::shared() {
    return {*platform::current().hotKeys, *platform::current().dispatch};
}

std::uint32_t carbonModifiers(std::int64_t flags) {
    if (flags < 0) {
        std::abort();
    }
    std::uint32_t carbon = 0;
    for (const ModifierRow& row : kModifierRows) {
        carbon |= (flags & row.flag) != 0 ? row.carbon : 0;
    }
    return carbon;
}

HotKeyService::HotKeyService(std::function<void()> onTrigger, HotKeyServiceEnvironment environment)
    : environment_(environment), onTrigger_(std::move(onTrigger)) {
    liveService() = self_;
    installEventHandler();
    environment_.logger.info("HotKeyService initialized");
}

HotKeyService::~HotKeyService() {
    hotKeyRef_.reset();
    eventHandlerRef_.reset();
}

std::weak_ptr<HotKeyService*>& HotKeyService::liveService() {
    static std::weak_ptr<HotKeyService*> service;
    return service;
}

void HotKeyService::installEventHandler() {
    auto result = environment_.hotKeys.installEventHandler(
        [&dispatch = environment_.dispatch](const platform::HotKeyEvent* event) {
            return hotKeyPressed(event, dispatch);
        });
    if (result.status != status::kSuccess) {
        environment_.logger.error("InstallEventHandler FAILED with status " +
                                  std::to_string(result.status));
        return;
    }
    eventHandlerRef_ = std::move(result.handle);
    environment_.logger.info("InstallEventHandler SUCCESS");
}

HotKeyService::RegistrationState HotKeyService::registerShortcut(std::int64_t keyCode,
                                                                 std::int64_t modifiers) {
    unregister();
    if (!isValidShortcut(keyCode, modifiers)) {
        environment_.logger.info("register() skipped: shortcut is empty or invalid");
        environment_.hotKeys.withdrawRegistration();
        return RegistrationState::inactive;
    }
    const std::uint32_t code = hotKeyCode(keyCode);
    const std::uint32_t carbon = carbonModifiers(modifiers);
    if (!eventHandlerRef_) {
        return RegistrationState::failed;
    }
    environment_.logger.info("Registering hot key: keyCode=" + std::to_string(code) +
                             " carbonMods=" + std::to_string(carbon));
    auto result = environment_.hotKeys.registerEventHotKey(code, carbon, kHotKeyID);
    if (result.status == status::kPending) {
        return RegistrationState::inactive;
    }
    if (result.status != status::kSuccess) {
        environment_.logger.error("RegisterEventHotKey FAILED with status " +
                                  std::to_string(result.status));
        return result.status == status::kExists ? RegistrationState::conflict
                                                : RegistrationState::failed;
    }
    hotKeyRef_ = std::move(result.handle);
    environment_.logger.info("RegisterEventHotKey SUCCESS, ref=" +
                             (hotKeyRef_ ? hotKeyRef_->description() : "none"));
    return hotKeyRef_ ? RegistrationState::active : RegistrationState::failed;
}

void HotKeyService::unregister() {
    if (!hotKeyRef_) {
        return;
    }
    hotKeyRef_.reset();
    environment_.logger.info("Unregistered hot key");
}

void HotKeyService::applyShortcut(UserSettings& settings) {
    const std::int64_t keyCode = settings.shortcutKeyCode();
    const std::int64_t modifiers = settings.shortcutModifiers();
    if (isValidShortcut(keyCode, modifiers)) {
        settings.setShortcutRegistrationState(registerShortcut(keyCode, modifiers));
    } else {
        unregister();
        environment_.hotKeys.withdrawRegistration();
        settings.setShortcutRegistrationState(RegistrationState::inactive);
    }
}

std::int32_t HotKeyService::hotKeyPressed(const platform::HotKeyEvent* event,
                                          platform::Dispatch& dispatch) {
    if (event == nullptr) {
        return status::kEventNotHandled;
    }
    platform::HotKeyID id;
    if (const std::int32_t failure = event->hotKeyID(id); failure != status::kSuccess) {
        return failure;
    }
    // Only one hot key exists, so the signature identifies it.
    if (id.signature != kSignature) {
        return status::kEventNotHandled;
    }
    dispatch.async([] {
        const auto service = liveService().lock();
        if (!service) {
            return;
        }
        (*service)->environment_.logger.info("Hot key PRESSED \u2014 invoking onTrigger");
        // A copy, because the action may destroy the service.
        if (const auto action = (*service)->onTrigger_) {
            action();
        }
    });
    return status::kSuccess;
}

}  // namespace tarnwick
