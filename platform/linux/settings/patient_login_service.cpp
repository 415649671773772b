// SPDX-License-Identifier: MIT
#include "platform/linux/settings/patient_login_service.h"

#include <utility>

namespace tarnwick::platform {
namespace {

using Change = std::optional<LoginServiceError>;

LoginServiceError lateError() {
    return {"Cannot change what starts at login: the home folder does not answer"};
}

}  // namespace

PatientLoginService::PatientLoginService(std::shared_ptr<LoginService> service, Workers& workers)
    : service_(std::move(service)), workers_(workers) {}

LoginServiceStatus PatientLoginService::status() {
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
    if (!isBack_->load()) {
        return std::nullopt;
    }
    const auto isBack = std::make_shared<std::atomic<bool>>(false);
    const auto answer = std::make_shared<std::optional<Answer>>();
    const Workers::Outcome outcome = workers_.run(
        [service = service_, isBack, answer, question = std::move(question)] {
            *answer = question(*service);
            isBack->store(true);
        },
        kPatience);
    if (outcome != Workers::Outcome::refused) {
        isBack_ = isBack;
    }
    return outcome == Workers::Outcome::ended ? *answer : std::nullopt;
}

}  // namespace tarnwick::platform
