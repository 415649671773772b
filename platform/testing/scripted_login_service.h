// SPDX-License-Identifier: MIT
// A login service with answers from a test.
#pragma once

#include <functional>
#include <optional>
#include <utility>
#include <vector>

#include "core/records/published.h"
#include "platform/login_service.h"

namespace tarnwick::platform::testing {

/// A change that succeeds moves the status to enabled or notRegistered; one that fails leaves it.
class ScriptedLoginService final : public LoginService {
 public:
    enum class Call { status, registerService, unregisterService };

    explicit ScriptedLoginService(LoginServiceStatus status = LoginServiceStatus::notRegistered)
        : status_(status) {}

    void setStatus(LoginServiceStatus status) { status_ = status; }
    /// Sets the result of all later registrations; absent for success.
    void setRegisterError(std::optional<LoginServiceError> error) {
        registerError_ = std::move(error);
    }
    /// Sets the result of all later removals; absent for success.
    void setUnregisterError(std::optional<LoginServiceError> error) {
        unregisterError_ = std::move(error);
    }

    LoginServiceStatus status() override;
    std::optional<LoginServiceError> registerService() override;
    std::optional<LoginServiceError> unregisterService() override;
    [[nodiscard]] Subscription onLateAnswer(std::function<void()> observer) override {
        return late_.observe(std::move(observer));
    }
    /// The system answers at last: its status is this one now.
    void answerLate(LoginServiceStatus status) {
        status_ = status;
        late_.announce();
    }

    /// Every call so far, in order.
    const std::vector<Call>& calls() const { return calls_; }
    void clearCalls() { calls_.clear(); }

 private:
    LoginServiceStatus status_;
    std::optional<LoginServiceError> registerError_;
    std::optional<LoginServiceError> unregisterError_;
    std::vector<Call> calls_;
    Announcer late_;
};

}  // namespace tarnwick::platform::testing
