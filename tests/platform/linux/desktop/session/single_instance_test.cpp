#include "platform/linux/desktop/session/single_instance.h"

#include <QDBusConnectionInterface>
#include <QFile>
#include <QTemporaryDir>
#include <atomic>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <poll.h>
#include <string>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>

#include "tests/platform/linux/desktop/private_bus.h"

namespace tarnwick::platform {
namespace {

using Claim = SingleInstance::Claim;
using testing::ask;
using testing::PrivateBus;
using testing::waitUntil;

QDBusConnection noBus() {
    return QDBusConnection("there is none");
}

TEST(DisplayName, IsOfTheServerAndNotOfAScreen) {
    std::map<std::string, std::string> variables;
    const auto name = [&variables] {
        return displayName([&variables](const char* variable) -> const char* {
            const auto found = variables.find(variable);
            return found == variables.end() ? nullptr : found->second.c_str();
        });
    };
    EXPECT_EQ(name(), "");
    for (const auto& [display, expected] :
         std::map<std::string, std::string>{{":0", ":0"},
                                            {":10.2", ":10"},
                                            {"a.example:1.0", "a.example:1"},
                                            {"odd.name", "odd.name"}}) {
        variables["DISPLAY"] = display;
        EXPECT_EQ(name(), expected);
    }
    variables["WAYLAND_DISPLAY"] = "wayland-1.5";
    EXPECT_EQ(name(), "wayland-1.5");
    variables["WAYLAND_DISPLAY"] = "";
    EXPECT_EQ(name(), "odd.name");
}

class OnBus : public ::testing::Test {
 protected:
    /// A second start, as a process of its own would make it: in a thread, on a connection of its
    /// own, while this thread's event loop runs.
    Claim secondStart(const std::string& folder = {}) { return secondStart(bus_, folder); }
    Claim secondStart(const PrivateBus& bus, const std::string& folder) {
        const QString address = bus.address();
        std::atomic<bool> done = false;
        Claim result = Claim::unanswered;
        std::thread second([&] {
            {
                SingleInstance other(QDBusConnection::connectToBus(address, "second"), folder);
                result = other.claim(30'000);
            }
            QDBusConnection::disconnectFromBus("second");
            done = true;
        });
        waitUntil([&] { return done.load(); });
        second.join();
        return result;
    }

    std::string folder() const { return folder_.path().toStdString(); }

    QTemporaryDir folder_;
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

/// A first that ends as soon as it is asked: it answers with an error, or not at all.
class Ending final : public QDBusVirtualObject {
 public:
    Ending(QDBusConnection bus, bool answers) : bus_(std::move(bus)), answers_(answers) {
        bus_.registerVirtualObject(SingleInstance::kPath, this);
        bus_.interface()->registerService(SingleInstance::kService);
    }
    Ending(const Ending&) = delete;
    Ending& operator=(const Ending&) = delete;
    ~Ending() override { bus_.unregisterObject(SingleInstance::kPath); }

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection&) override {
        ++asked;
        bus_.interface()->unregisterService(SingleInstance::kService);
        if (answers_) {
            bus_.send(message.createErrorReply(QDBusError::Failed, "it ends"));
        } else {
            // The bus answers for a connection that has gone.
            message.setDelayedReply(true);
            QMetaObject::invokeMethod(
                this,
                [this] {
                    QDBusConnection::disconnectFromBus(bus_.name());
                    // It closes with its last copy.
                    bus_ = noBus();
                },
                Qt::QueuedConnection);
        }
        return true;
    }

    int asked = 0;

 private:
    QDBusConnection bus_;
    bool answers_;
};

TEST_F(OnBus, AStartWhileTheFirstIsEndingIsTheNextFirst) {
    for (const bool answers : {true, false}) {
        Ending first(bus_.connect(), answers);
        EXPECT_EQ(secondStart(), Claim::first);
        EXPECT_EQ(first.asked, 1);
    }
}

TEST_F(OnBus, AFirstThatHasLetGoSendsAwayWhoeverStillAsks) {
    SingleInstance first(firstBus_, {});
    ASSERT_EQ(first.claim(), Claim::first);
    first.setOpenPanel([this] { ++opened_; });
    first.release();
    // Under its own name: who found it just before it let go.
    const QDBusMessage answer =
        ask(bus_.connect(),
            QDBusMessage::createMethodCall(firstBus_.baseService(), SingleInstance::kPath,
                                           SingleInstance::kInterface, "OpenPanel"));
    EXPECT_EQ(answer.type(), QDBusMessage::ErrorMessage);
    EXPECT_EQ(opened_, 0);
    EXPECT_EQ(secondStart(), Claim::first);
}

TEST_F(OnBus, TheFirstIsFoundOnAnotherBus) {
    SingleInstance first(firstBus_, folder());
    ASSERT_EQ(first.claim(), Claim::first);
    first.setOpenPanel([this] { ++opened_; });
    const PrivateBus later;
    EXPECT_EQ(secondStart(later, folder()), Claim::handedOver);
    EXPECT_TRUE(waitUntil([&] { return opened_ == 1; }));
    // It keeps nothing there that it does not serve.
    EXPECT_EQ(secondStart(later, folder()), Claim::handedOver);
    EXPECT_TRUE(waitUntil([&] { return opened_ == 2; }));
}

TEST_F(OnBus, AFirstThatHadNoBusIsFoundFromTheBusThatCameLater) {
    SingleInstance first(noBus(), folder());
    ASSERT_EQ(first.claim(), Claim::first);
    first.setOpenPanel([this] { ++opened_; });
    EXPECT_EQ(secondStart(folder()), Claim::handedOver);
    EXPECT_TRUE(waitUntil([&] { return opened_ == 1; }));
    first.release();
    EXPECT_EQ(secondStart(folder()), Claim::first);
}

TEST_F(OnBus, AFirstOnABusIsFoundWithoutOne) {
    SingleInstance first(firstBus_, folder());
    ASSERT_EQ(first.claim(), Claim::first);
    first.setOpenPanel([this] { ++opened_; });
    SingleInstance second(noBus(), folder());
    EXPECT_EQ(second.claim(), Claim::handedOver);
    EXPECT_TRUE(waitUntil([&] { return opened_ == 1; }));
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

TEST_F(WithoutBus, AStartWhileTheFirstIsEndingIsTheNextFirst) {
    auto first = std::make_unique<InstanceLock>(folder());
    ASSERT_TRUE(first->acquire({}));
    // It has stopped listening and still holds the lock.
    ASSERT_TRUE(QFile::remove(folder_.filePath("tarnwick.socket")));
    const int watch = inotify_init1(IN_CLOEXEC);
    ASSERT_GE(watch, 0);
    ASSERT_GE(inotify_add_watch(watch, (folder() + "/tarnwick.lock").c_str(), IN_CLOSE_WRITE), 0);
    Claim result = Claim::unanswered;
    std::thread start([&] {
        SingleInstance second(noBus(), folder());
        result = second.claim(30'000);
    });
    // It ends once it has refused the second a first time.
    pollfd refused{watch, POLLIN, 0};
    EXPECT_EQ(poll(&refused, 1, 30'000), 1);
    first.reset();
    start.join();
    close(watch);
    EXPECT_EQ(result, Claim::first);
}

TEST_F(WithoutBus, LettingGoMakesRoomForTheNext) {
    SingleInstance first(noBus(), folder());
    ASSERT_EQ(first.claim(), Claim::first);
    first.release();
    first.release();
    SingleInstance next(noBus(), folder());
    EXPECT_EQ(next.claim(), Claim::first);
}

TEST_F(WithoutBus, EveryDisplayHasItsOwn) {
    SingleInstance first(noBus(), folder(), ":0");
    ASSERT_EQ(first.claim(), Claim::first);
    first.setOpenPanel([this] { ++opened_; });
    SingleInstance other(noBus(), folder(), ":1");
    EXPECT_EQ(other.claim(), Claim::first);
    SingleInstance socket(noBus(), folder(), "/run/user/1/" + std::string(200, 'w') + "/wayland-2");
    EXPECT_EQ(socket.claim(), Claim::first);
    SingleInstance second(noBus(), folder(), ":0");
    EXPECT_EQ(second.claim(), Claim::handedOver);
    EXPECT_TRUE(waitUntil([&] { return opened_ == 1; }));
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
