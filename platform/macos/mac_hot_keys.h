// Carbon event hot keys.
#pragma once

#include "platform/hot_keys.h"

namespace tarnwick::platform {

/// One handler at a time. The outcome of a registration is final: there is never one to withdraw,
/// and no change to report.
class MacHotKeys final : public HotKeys {
 public:
    HandlerResult installEventHandler(HotKeyHandler handler) override;
    RegistrationResult registerEventHotKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                           HotKeyID id) override;
    void withdrawRegistration() override {}
    void setRegistrationChanged(std::function<void()>) override {}
};

}  // namespace tarnwick::platform
