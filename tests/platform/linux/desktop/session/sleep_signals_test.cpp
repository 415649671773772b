// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/session/sleep_signals.h"

#include <gtest/gtest.h>
#include <memory>

#include "platform/linux/desktop/session/bus_calls.h"
#include "tests/platform/linux/desktop/private_bus.h"

namespace tarnwick::platform {
namespace {

using testing::ask;
using testing::PrivateBus;
using testing::waitUntil;

constexpr auto kService = "org.freedesktop.login1";
constexpr auto kPath = "/org/freedesktop/login1";
constexpr auto kInterface = "org.freedesktop.login1.Manager";

class Waking : public ::testing::Test {
 protected:
    void SetUp() override {
        ASSERT_TRUE(manager_.registerService(kService));
        follow();
    }
    void follow() {
        signals_ = std::make_unique<SleepSignals>(bus_, [this] { ++woken_; });
        settle();
    }
    void send(const QDBusConnection& from, const QVariantList& arguments,
              const char* member = "PrepareForSleep", const char* path = kPath) {
        QDBusMessage signal = QDBusMessage::createSignal(path, kInterface, member);
        signal.setArguments(arguments);
        ASSERT_TRUE(from.send(signal));
        settle();
    }
    /// Makes more round trips on every connection than a signal and the check of its sender need.
    /// Afterwards everything that was sent has had its effect.
    void settle() {
        for (const QDBusConnection& each : {manager_, stranger_, bus_, bus_, bus_}) {
            ask(each, busCall("GetId", {}));
        }
    }

    PrivateBus daemon_;
    QDBusConnection bus_ = daemon_.connect();
    QDBusConnection manager_ = daemon_.connect();
    QDBusConnection stranger_ = daemon_.connect();
    int woken_ = 0;
    std::unique_ptr<SleepSignals> signals_;
};

TEST_F(Waking, IsHeardOfEachTime) {
    send(manager_, {false});
    EXPECT_EQ(woken_, 1);
    send(manager_, {true});
    send(manager_, {false});
    EXPECT_EQ(woken_, 2);
}

TEST_F(Waking, IsNotFallingAsleep) {
    send(manager_, {true});
    EXPECT_EQ(woken_, 0);
}

TEST_F(Waking, IsToldByTheLoginManagerOnly) {
    send(stranger_, {false});
    EXPECT_EQ(woken_, 0);
}

TEST_F(Waking, IsNoOtherSignal) {
    send(manager_, {false}, "PrepareForShutdown");
    send(manager_, {false}, "PrepareForSleep", "/org/freedesktop/login2");
    send(manager_, {});
    send(manager_, {"false"});
    send(manager_, {0U});
    EXPECT_EQ(woken_, 0);
}

TEST_F(Waking, IsHeardOfFromARestartedLoginManager) {
    ASSERT_TRUE(manager_.unregisterService(kService));
    ASSERT_TRUE(stranger_.registerService(kService));
    send(manager_, {false});
    EXPECT_EQ(woken_, 0);
    send(stranger_, {false});
    EXPECT_EQ(woken_, 1);
}

TEST_F(Waking, IsNotHeardOfFromALoginManagerThatIsGone) {
    ASSERT_TRUE(manager_.unregisterService(kService));
    send(manager_, {false});
    EXPECT_EQ(woken_, 0);
}

TEST_F(Waking, HasNoEffectOnceNobodyListens) {
    signals_.reset();
    send(manager_, {false});
    EXPECT_EQ(woken_, 0);
}

TEST_F(Waking, IsNeverHeardOfWithoutABus) {
    const SleepSignals alone(QDBusConnection("there is none"), [this] { ++woken_; });
    send(manager_, {true});
    EXPECT_EQ(woken_, 0);
}

TEST_F(Waking, SurvivesTheEndOfTheBus) {
    daemon_.end();
    EXPECT_TRUE(waitUntil([&] { return !bus_.isConnected(); }));
    EXPECT_EQ(woken_, 0);
}

}  // namespace
}  // namespace tarnwick::platform
