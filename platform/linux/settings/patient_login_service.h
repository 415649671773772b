// SPDX-License-Identifier: MIT
// A login service on a disk that may hang.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <utility>

#include "core/records/published.h"
#include "platform/dispatch.h"
#include "platform/login_service.h"
#include "platform/workers.h"

namespace tarnwick::platform {

/// Lets a worker ask another service, and waits for it no longer than kPatience. Main thread.
///
/// While a question is under way, nothing else is asked: the status is `unanswered`, and a change
/// is an error. A change whose answer came too late may still be made; observers of late answers
/// are told then, unless something else has been asked by that time.
class PatientLoginService final : public LoginService {
 public:
    /// Seconds; less than what people notice.
    static constexpr double kPatience = 0.1;

    /// `workers` must outlive this object, and `dispatch` the work that is under way. One worker at
    /// a time uses `service`.
    PatientLoginService(std::shared_ptr<LoginService> service, Workers& workers,
                        Dispatch& dispatch);

    LoginServiceStatus status() override;
    std::optional<LoginServiceError> registerService() override;
    std::optional<LoginServiceError> unregisterService() override;
    [[nodiscard]] Subscription onLateAnswer(std::function<void()> observer) override {
        return late_.observe(std::move(observer));
    }

 private:
    template <class Answer>
    struct Question;

    /// What `question` returns; absent if it does not come in time.
    template <class Answer>
    std::optional<Answer> ask(std::function<Answer(LoginService&)> question);
    void tellLate(std::optional<LoginServiceStatus> status);

    const std::shared_ptr<LoginService> service_;
    Workers& workers_;
    Dispatch& dispatch_;
    /// Whether the last worker is back; names the last question, too.
    std::shared_ptr<const std::atomic<bool>> isBack_ = std::make_shared<std::atomic<bool>>(true);
    Announcer late_;
    /// The late answer while it is told, so that a slow disk is not asked again and again.
    std::optional<LoginServiceStatus> lateStatus_;
    /// Expires with this.
    const std::shared_ptr<PatientLoginService*> self_ =
        std::make_shared<PatientLoginService*>(this);
};

}  // namespace tarnwick::platform
