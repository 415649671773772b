// SPDX-License-Identifier: MIT
#include "platform/linux/settings/patient_login_service.h"

#include <gtest/gtest.h>
#include <memory>
#include <vector>

#include "platform/testing/manual_dispatch.h"
#include "platform/testing/scripted_login_service.h"
#include "platform/testing/scripted_workers.h"

namespace tarnwick::platform {
namespace {

using testing::ManualDispatch;
using testing::ScriptedLoginService;
using testing::ScriptedWorkers;
using Call = ScriptedLoginService::Call;

class PatientLogin : public ::testing::Test {
 protected:
    std::shared_ptr<ScriptedLoginService> inner =
        std::make_shared<ScriptedLoginService>(LoginServiceStatus::enabled);
    ScriptedWorkers workers;
    ManualDispatch dispatch;
    PatientLoginService service{inner, workers, dispatch};
};

TEST_F(PatientLogin, PassesOnWhatComesInTime) {
    EXPECT_EQ(service.status(), LoginServiceStatus::enabled);
    EXPECT_FALSE(service.unregisterService());
    EXPECT_EQ(service.status(), LoginServiceStatus::notRegistered);
    EXPECT_FALSE(service.registerService());
    inner->setRegisterError(LoginServiceError{"no"});
    inner->setUnregisterError(LoginServiceError{"never"});
    EXPECT_EQ(service.registerService()->localizedDescription, "no");
    EXPECT_EQ(service.unregisterService()->localizedDescription, "never");
    EXPECT_EQ(service.status(), LoginServiceStatus::enabled);
}

TEST_F(PatientLogin, WaitsNoLongerThanPeopleNoticeAndAsksNothingElseMeanwhile) {
    workers.hangs = true;
    EXPECT_EQ(service.status(), LoginServiceStatus::unanswered);
    EXPECT_EQ(workers.waits, std::vector{0.1});
    workers.hangs = false;
    EXPECT_EQ(service.status(), LoginServiceStatus::unanswered);
    const auto error = service.registerService();
    ASSERT_TRUE(error);
    EXPECT_EQ(error->localizedDescription,
              "Cannot change what starts at login: the home folder does not answer");
    EXPECT_TRUE(service.unregisterService());
    EXPECT_TRUE(inner->calls().empty());
    EXPECT_EQ(workers.waits.size(), 1U);
}

TEST_F(PatientLogin, AsksAgainOnceTheWorkerIsBack) {
    workers.hangs = true;
    EXPECT_TRUE(service.unregisterService());
    workers.hangs = false;
    workers.comeBack();
    EXPECT_EQ(inner->calls(), std::vector{Call::unregisterService});
    EXPECT_EQ(service.status(), LoginServiceStatus::notRegistered);
}

TEST_F(PatientLogin, TellsOfALateAnswerAndWhatItWasWithoutAskingAgain) {
    std::vector<LoginServiceStatus> told;
    const auto observation = service.onLateAnswer([&] { told.push_back(service.status()); });
    workers.hangs = true;
    service.status();
    workers.comeBack();
    EXPECT_TRUE(told.empty());
    dispatch.runMain();
    EXPECT_EQ(told, std::vector{LoginServiceStatus::enabled});
    EXPECT_EQ(inner->calls(), std::vector{Call::status});
    // After a change nothing is known, so the status is asked for: late, too, and told once more.
    EXPECT_TRUE(service.unregisterService());
    workers.comeBack();
    dispatch.runMain();
    workers.comeBack();
    dispatch.runMain();
    EXPECT_EQ(told, (std::vector{LoginServiceStatus::enabled, LoginServiceStatus::unanswered,
                                 LoginServiceStatus::notRegistered}));
    workers.comeBack();
    dispatch.runMain();
    EXPECT_EQ(told.size(), 3U);
}

TEST_F(PatientLogin, TellsNothingThatIsOlderThanALaterAnswer) {
    std::vector<LoginServiceStatus> told;
    const auto observation = service.onLateAnswer([&] { told.push_back(service.status()); });
    workers.hangs = true;
    service.status();
    workers.comeBack();
    workers.hangs = false;
    // Before the main queue comes to the late answer.
    EXPECT_FALSE(service.unregisterService());
    dispatch.runMain();
    EXPECT_EQ(told, std::vector<LoginServiceStatus>{});
}

TEST_F(PatientLogin, TellsNothingOfWhatComesInTimeOrOnceItHasGone) {
    int told = 0;
    auto late = std::make_unique<PatientLoginService>(inner, workers, dispatch);
    const auto observation = late->onLateAnswer([&] { ++told; });
    late->status();
    late->unregisterService();
    dispatch.runMain();
    workers.hangs = true;
    late->status();
    late.reset();
    workers.comeBack();
    dispatch.runMain();
    EXPECT_EQ(told, 0);
}

TEST_F(PatientLogin, WithoutAThreadThereIsNoAnswerAndTheNextQuestionIsAsked) {
    workers.refuses = true;
    EXPECT_EQ(service.status(), LoginServiceStatus::unanswered);
    EXPECT_TRUE(service.registerService());
    workers.refuses = false;
    EXPECT_EQ(service.status(), LoginServiceStatus::enabled);
}

}  // namespace
}  // namespace tarnwick::platform
