#include "platform/linux/desktop/single_instance.h"

#include <QFile>
#include <QTemporaryDir>
#include <atomic>
#include <gtest/gtest.h>
#include <optional>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include "tests/platform/linux/desktop/private_bus.h"

namespace tarnwick::platform {
namespace {

using Claim = SingleInstance::Claim;
using testing::PrivateBus;
using testing::waitUntil;

QDBusConnection noBus() {
    return QDBusConnection("there is none");
}

class OnBus : public ::testing::Test {
 protected:
    /// A second start, as a process of its own would make it: in a thread, on a connection of its
    /// own, while this thread's event loop runs.
    Claim secondStart() {
        const QString address = bus_.address();
        std::atomic<bool> done = false;
        Claim result = Claim::first;
        std::thread second([&] {
            {
                SingleInstance other(QDBusConnection::connectToBus(address, "second"), {});
                result = other.claim(30'000);
            }
            QDBusConnection::disconnectFromBus("second");
            done = true;
        });
        waitUntil([&] { return done.load(); });
        second.join();
        return result;
    }

    PrivateBus bus_;
    QDBusConnection firstBus_ = bus_.connect();
    int opened_ = 0;
};

TEST_F(OnBus, TheSecondStartAsksTheFirstToOpenItsPanel) {
    SingleInstance first(firstBus_, {});
    EXPECT_EQ(first.claim(), Claim::first);
    first.setOpenPanel([this] { ++opened_; });
    EXPECT_EQ(secondStart(), Claim::handedOver);
    EXPECT_TRUE(waitUntil([&] { return opened_ == 1; }));
    EXPECT_EQ(secondStart(), Claim::handedOver);
    EXPECT_TRUE(waitUntil([&] { return opened_ == 2; }));
}

TEST_F(OnBus, ARequestDuringTheStartIsMadeUpFor) {
    SingleInstance first(firstBus_, {});
    ASSERT_EQ(first.claim(), Claim::first);
    EXPECT_EQ(secondStart(), Claim::handedOver);
    EXPECT_EQ(opened_, 0);
    first.setOpenPanel([this] { ++opened_; });
    EXPECT_EQ(opened_, 1);
}

TEST_F(OnBus, TheNameIsFreeOnceTheFirstHasEnded) {
    {
        SingleInstance first(firstBus_, {});
        ASSERT_EQ(first.claim(), Claim::first);
    }
    EXPECT_EQ(secondStart(), Claim::first);
}

TEST_F(OnBus, SaysSoWhenTheFirstDoesNotAnswer) {
    SingleInstance first(firstBus_, {});
    ASSERT_EQ(first.claim(), Claim::first);
    // This thread waits for the second and so cannot answer as the first.
    SingleInstance second(bus_.connect(), {});
    EXPECT_EQ(second.claim(50), Claim::unanswered);
}

class WithoutBus : public ::testing::Test {
 protected:
    std::string folder() const { return folder_.path().toStdString(); }

    QTemporaryDir folder_;
    int opened_ = 0;
};

TEST_F(WithoutBus, TheSecondStartAsksTheFirstToOpenItsPanel) {
    SingleInstance first(noBus(), folder());
    EXPECT_EQ(first.claim(), Claim::first);
    first.setOpenPanel([this] { ++opened_; });
    for (int start = 1; start <= 2; ++start) {
        SingleInstance second(noBus(), folder());
        EXPECT_EQ(second.claim(), Claim::handedOver);
        EXPECT_TRUE(waitUntil([&] { return opened_ == start; }));
    }
}

TEST_F(WithoutBus, WhatACrashLeftBehindDoesNotBlock) {
    const pid_t crashing = fork();
    if (crashing == 0) {
        InstanceLock lock(folder());
        _exit(lock.acquire({}) ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(waitpid(crashing, &status, 0), crashing);
    ASSERT_EQ(WEXITSTATUS(status), 0);
    ASSERT_TRUE(QFile::exists(folder_.filePath("tarnwick.lock")));
    ASSERT_TRUE(QFile::exists(folder_.filePath("tarnwick.socket")));

    SingleInstance first(noBus(), folder());
    EXPECT_EQ(first.claim(), Claim::first);
    first.setOpenPanel([this] { ++opened_; });
    SingleInstance second(noBus(), folder());
    EXPECT_EQ(second.claim(), Claim::handedOver);
    EXPECT_TRUE(waitUntil([&] { return opened_ == 1; }));
}

TEST_F(WithoutBus, TheNextStartIsTheFirstOnceTheFirstHasEnded) {
    {
        SingleInstance first(noBus(), folder());
        ASSERT_EQ(first.claim(), Claim::first);
    }
    SingleInstance next(noBus(), folder());
    EXPECT_EQ(next.claim(), Claim::first);
}

TEST_F(WithoutBus, SaysSoWhenTheFirstDoesNotListen) {
    SingleInstance first(noBus(), folder());
    ASSERT_EQ(first.claim(), Claim::first);
    ASSERT_TRUE(QFile::remove(folder_.filePath("tarnwick.socket")));
    SingleInstance second(noBus(), folder());
    EXPECT_EQ(second.claim(0), Claim::unanswered);
}

TEST_F(WithoutBus, StartsUnguardedWhereTheFolderCannotBeUsed) {
    SingleInstance nowhere(noBus(), {});
    EXPECT_EQ(nowhere.claim(), Claim::first);
    SingleInstance missing(noBus(), folder() + "/missing");
    EXPECT_EQ(missing.claim(), Claim::first);
    const std::string deep = folder() + "/" + std::string(120, 'd');
    ASSERT_EQ(mkdir(deep.c_str(), 0700), 0);
    SingleInstance longPath(noBus(), deep);
    EXPECT_EQ(longPath.claim(), Claim::first);
}

}  // namespace
}  // namespace tarnwick::platform
