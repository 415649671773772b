// SPDX-License-Identifier: MIT
// Whether the system starts the program when the user logs in.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "core/records/published.h"

namespace tarnwick::platform {

enum class LoginServiceStatus {
    notRegistered = 0,
    enabled = 1,
    requiresApproval = 2,
    notFound = 3,
    /// The system does not answer now. It may answer later, see onLateAnswer().
    unanswered = 4,
};

struct LoginServiceError {
    std::string localizedDescription;
};

/// Main thread. Every call finishes before it returns.
class LoginService {
 public:
    virtual ~LoginService() = default;

    virtual LoginServiceStatus status() = 0;
    /// Returns an error, or nothing on success.
    virtual std::optional<LoginServiceError> registerService() = 0;
    /// Returns an error, or nothing on success.
    virtual std::optional<LoginServiceError> unregisterService() = 0;

    /// Calls `observer` when the system has answered a call that had ended without an answer:
    /// status() then tells what is so now. Never where every call is answered.
    [[nodiscard]] virtual Subscription onLateAnswer(
        [[maybe_unused]] std::function<void()> observer) {
        return Subscription();
    }
};

/// For a system that cannot start programs at login: never registered; both operations return an
/// error.
class NullLoginService final : public LoginService {
 public:
    LoginServiceStatus status() override { return LoginServiceStatus::notRegistered; }
    std::optional<LoginServiceError> registerService() override { return unavailable(); }
    std::optional<LoginServiceError> unregisterService() override { return unavailable(); }

 private:
    static LoginServiceError unavailable() {
        return {"Start at login is not available on this system"};
    }
};

}  // namespace tarnwick::platform
