// SPDX-License-Identifier: MIT
// A login service on a disk that may hang.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <optional>

#include "platform/login_service.h"
#include "platform/workers.h"

namespace tarnwick::platform {

/// Lets a worker ask another service, and waits for it no longer than kPatience. Main thread.
///
/// While a question is under way, nothing else is asked: the status is `unanswered`, and a change
/// is an error. A change whose answer came too late may still be made.
class PatientLoginService final : public LoginService {
 public:
    /// Seconds; less than what people notice.
    static constexpr double kPatience = 0.1;

    /// `workers` must outlive this object. One worker at a time uses `service`.
    PatientLoginService(std::shared_ptr<LoginService> service, Workers& workers);

    LoginServiceStatus status() override;
    std::optional<LoginServiceError> registerService() override;
    std::optional<LoginServiceError> unregisterService() override;

 private:
    /// What `question` returns; absent if it does not come in time.
    template <class Answer>
    std::optional<Answer> ask(std::function<Answer(LoginService&)> question);

    const std::shared_ptr<LoginService> service_;
    Workers& workers_;
    /// Whether the last worker is back.
    std::shared_ptr<std::atomic<bool>> isBack_ = std::make_shared<std::atomic<bool>>(true);
};

}  // namespace tarnwick::platform
