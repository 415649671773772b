// SPDX-License-Identifier: MIT
#include "platform/macos/foundation_text.h"
#include "platform/macos/login_item_service.h"
#include "platform/macos/mac_machine.h"

namespace tarnwick::platform {
namespace {

LoginServiceError errorFrom(NSError* error) {
    return {text(error.localizedDescription)};
}

}  // namespace

LoginServiceStatus MacLoginService::status() {
    @autoreleasepool {
        switch (SMAppService.mainAppService.status) {
            case SMAppServiceStatusNotRegistered:
                return LoginServiceStatus::notRegistered;
            case SMAppServiceStatusEnabled:
                return LoginServiceStatus::enabled;
            case SMAppServiceStatusRequiresApproval:
                return LoginServiceStatus::requiresApproval;
            case SMAppServiceStatusNotFound:
                break;
        }
        return LoginServiceStatus::notFound;
    }
}

std::optional<LoginServiceError> MacLoginService::registerService() {
    @autoreleasepool {
        NSError* error = nil;
        if ([SMAppService.mainAppService registerAndReturnError:&error]) {
            return std::nullopt;
        }
        return errorFrom(error);
    }
}

std::optional<LoginServiceError> MacLoginService::unregisterService() {
    @autoreleasepool {
        NSError* error = nil;
        if ([SMAppService.mainAppService unregisterAndReturnError:&error]) {
            return std::nullopt;
        }
        return errorFrom(error);
    }
}

}  // namespace tarnwick::platform
