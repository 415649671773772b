// Start at login through the system's service management.
#pragma once

#include "platform/login_service.h"

namespace tarnwick::platform {

/// `SMAppService` `mainAppService`.
class MacLoginService final : public LoginService {
 public:
    LoginServiceStatus status() override;
    std::optional<LoginServiceError> registerService() override;
    std::optional<LoginServiceError> unregisterService() override;
};

}  // namespace tarnwick::platform
