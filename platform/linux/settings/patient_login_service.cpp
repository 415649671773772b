// SPDX-License-Identifier: MIT
#include "platform/linux/settings/patient_login_service.h"

#include <atomic>
#include <type_traits>
#include <utility>

namespace tarnwick::platform {
namespace {

using Change = std::optional<LoginServiceError>;

LoginServiceError lateError() {
    return {"Cannot change what starts at login: the home folder does not answer"};
}

}  // namespace

/// Shared with a worker that may come back when nobody waits any more.
template <class Answer>
struct PatientLoginService::Question {
    std::optional<Answer> answer{};
    std::atomic<bool> isBack{false};
    std::atomic<bool> isLate{false};
};

PatientLoginService::PatientLoginService(std::shared_ptr<LoginService> service, Workers& workers,
                                         Dispatch& dispatch)
    : service_(std::move(service)), workers_(workers), dispatch_(dispatch) {}

LoginServiceStatus PatientLoginService::status() {
    if (lateStatus_) {
        return *lateStatus_;
    }
    return ask<LoginServiceStatus>([](LoginService& service) { return service.status(); })
        .value_or(LoginServiceStatus::unanswered);
}

Change PatientLoginService::registerService() {
    return ask<Change>([](LoginService& service) { return service.registerService(); })
        .value_or(lateError());
}

Change PatientLoginService::unregisterService() {
    return ask<Change>([](LoginService& service) { return service.unregisterService(); })
        .value_or(lateError());
}

template <class Answer>
std::optional<Answer> PatientLoginService::ask(std::function<Answer(LoginService&)> question) {
    if (!*isBack_) {
        return std::nullopt;
    }
    const auto asked = std::make_shared<Question<Answer>>();
    const auto tell = [asked, &dispatch = dispatch_, weak = std::weak_ptr(self_)] {
        dispatch.async([asked, weak] {
            const auto self = weak.lock();
            // What is asked later tells more, and may have changed what this answer says.
            if (!self || (*self)->isBack_.get() != &asked->isBack) {
                return;
            }
            if constexpr (std::is_same_v<Answer, LoginServiceStatus>) {
                (*self)->tellLate(asked->answer);
            } else {
                (*self)->tellLate(std::nullopt);
            }
        });
    };
    const Workers::Outcome outcome = workers_.run(
        [service = service_, asked, tell, question = std::move(question)] {
            asked->answer = question(*service);
            asked->isBack = true;
            if (asked->isLate) {
                tell();
            }
        },
        kPatience);
    if (outcome != Workers::Outcome::refused) {
        isBack_ = std::shared_ptr<const std::atomic<bool>>(asked, &asked->isBack);
    }
    if (outcome == Workers::Outcome::late) {
        asked->isLate = true;
        // It may have come back in between. To tell twice does no harm.
        if (asked->isBack) {
            tell();
        }
    }
    return outcome == Workers::Outcome::ended ? asked->answer : std::nullopt;
}

void PatientLoginService::tellLate(std::optional<LoginServiceStatus> status) {
    lateStatus_ = status;
    late_.announce();
    lateStatus_.reset();
}

}  // namespace tarnwick::platform
