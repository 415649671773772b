// SPDX-License-Identifier: MIT
#include "platform/testing/scripted_login_service.h"

namespace tarnwick::platform::testing {

LoginServiceStatus ScriptedLoginService::status() {
    calls_.push_back(Call::status);
    return status_;
}

std::optional<LoginServiceError> ScriptedLoginService::registerService() {
    calls_.push_back(Call::registerService);
    if (!registerError_) {
        status_ = LoginServiceStatus::enabled;
    }
    return registerError_;
}

std::optional<LoginServiceError> ScriptedLoginService::unregisterService() {
    calls_.push_back(Call::unregisterService);
    if (!unregisterError_) {
        status_ = LoginServiceStatus::notRegistered;
    }
    return unregisterError_;
}

}  // namespace tarnwick::platform::testing
