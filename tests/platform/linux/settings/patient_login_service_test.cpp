// SPDX-License-Identifier: MIT
#include "platform/linux/settings/patient_login_service.h"

#include <gtest/gtest.h>
#include <memory>
#include <vector>

#include "platform/testing/scripted_login_service.h"
#include "platform/testing/scripted_workers.h"

namespace tarnwick::platform {
namespace {

using testing::ScriptedLoginService;
using testing::ScriptedWorkers;
using Call = ScriptedLoginService::Call;

class PatientLogin : public ::testing::Test {
 protected:
    std::shared_ptr<ScriptedLoginService> inner =
        std::make_shared<ScriptedLoginService>(LoginServiceStatus::enabled);
    ScriptedWorkers workers;
    PatientLoginService service{inner, workers};
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

TEST_F(PatientLogin, WithoutAThreadThereIsNoAnswerAndTheNextQuestionIsAsked) {
    workers.refuses = true;
    EXPECT_EQ(service.status(), LoginServiceStatus::unanswered);
    EXPECT_TRUE(service.registerService());
    workers.refuses = false;
    EXPECT_EQ(service.status(), LoginServiceStatus::enabled);
}

}  // namespace
}  // namespace tarnwick::platform
