// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/session/single_instance.h"

#include <QDBusConnectionInterface>
#include <QDBusVirtualObject>
#include <QDir>
#include <QTemporaryDir>
#include <atomic>
#include <gtest/gtest.h>
#include <map>
#include <poll.h>
#include <string>
#include <sys/inotify.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

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
    qunsetenv("WAYLAND_DISPLAY");
    for (const auto& [display, expected] :
         std::map<std::string, std::string>{{"", ""},
                                            {":0", ":0"},
                                            {":10.2", ":10"},
                                            {"10.0.0.1:1.0", "10.0.0.1:1"},
                                            {"odd.2", "odd.2"}}) {
        qputenv("DISPLAY", display.c_str());
        EXPECT_EQ(displayName().toStdString(), expected);
    }
    qputenv("WAYLAND_DISPLAY", "wayland-1.5");
    EXPECT_EQ(displayName(), "wayland-1.5");
    qunsetenv("WAYLAND_DISPLAY");
    qunsetenv("DISPLAY");
}

class OnBus : public ::testing::Test {
 protected:
    /// A second start, as a process of its own would make it: in a thread, on a connection of its
    /// own, while this thread's event loop runs.
    Claim secondStart(const QString& folder = {}) { return secondStart(bus_, folder); }
    Claim secondStart(const PrivateBus& bus, const QString& folder,
                      Request request = Request::openPanel) {
        const QString address = bus.address();
        std::atomic<bool> done = false;
        Claim result = Claim::unanswered;
        std::thread second([&] {
            {
                SingleInstance other(QDBusConnection::connectToBus(address, "second"), folder);
                result = other.claim(request, 30'000);
            }
            QDBusConnection::disconnectFromBus("second");
            done = true;
        });
        waitUntil([&] { return done.load(); });
        second.join();
        return result;
    }

    QString folder() const { return folder_.path(); }

    QTemporaryDir folder_;
    PrivateBus bus_;
    QDBusConnection firstBus_ = bus_.connect();
    int opened_ = 0;
    const Perform count_ = [this](Request, const QString&) { ++opened_; };
};

TEST_F(OnBus, TheSecondStartAsksTheFirstToOpenItsPanel) {
    SingleInstance first(firstBus_, {});
    EXPECT_EQ(first.claim(), Claim::first);
    first.setPerform(count_);
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
    first.setPerform(count_);
    EXPECT_EQ(opened_, 1);
}

TEST_F(OnBus, TheSecondStartPassesOnWhatItIsAskedForAndThePermissionOfTheCompositor) {
    SingleInstance first(firstBus_, {});
    ASSERT_EQ(first.claim(), Claim::first);
    std::vector<std::pair<Request, QString>> asked;
    first.setPerform(
        [&asked](Request request, const QString& token) { asked.emplace_back(request, token); });
    qputenv("XDG_ACTIVATION_TOKEN", "a token");
    EXPECT_EQ(secondStart(bus_, {}, Request::showSettings), Claim::handedOver);
    qunsetenv("XDG_ACTIVATION_TOKEN");
    EXPECT_EQ(secondStart(bus_, {}, Request::togglePanel), Claim::handedOver);
    ASSERT_TRUE(waitUntil([&] { return asked.size() == 2; }));
    EXPECT_EQ(asked[0], std::pair(Request::showSettings, QString("a token")));
    EXPECT_EQ(asked[1], std::pair(Request::togglePanel, QString()));
}

TEST_F(OnBus, LaunchersAskByTheNamesOfActions) {
    SingleInstance first(firstBus_, {});
    ASSERT_EQ(first.claim(), Claim::first);
    std::vector<Request> asked;
    first.setPerform([&asked](Request request, const QString&) { asked.push_back(request); });
    const auto call = [this](const QString& method, const QVariantList& arguments) {
        QDBusMessage message =
            QDBusMessage::createMethodCall(SingleInstance::kService, "/org/tarnwick/Tarnwick",
                                           "org.freedesktop.Application", method);
        message.setArguments(arguments);
        EXPECT_EQ(ask(bus_.connect(), message).type(), QDBusMessage::ReplyMessage);
    };
    call("Activate", {QVariantMap()});
    call("Open", {QStringList{"file:///home"}, QVariantMap()});
    for (const char* action : {"open-panel", "toggle-panel", "unknown", "", "settings"}) {
        call("ActivateAction", {action, QVariantList{1}, QVariantMap{{"activation-token", 1}}});
    }
    EXPECT_EQ(asked, (std::vector{Request::openPanel, Request::openPanel, Request::openPanel,
                                  Request::togglePanel, Request::showSettings}));
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
    first.setPerform(count_);
    // This thread waits for the second and so cannot answer as the first.
    const QDBusConnection secondBus = bus_.connect();
    EXPECT_EQ(SingleInstance(secondBus, {}).claim(Request::openPanel, 50), Claim::unanswered);
    // What the second has asked for comes before this call.
    QDBusMessage call = QDBusMessage::createMethodCall(
        SingleInstance::kService, SingleInstance::kPath, SingleInstance::kInterface, "Unknown");
    EXPECT_EQ(ask(secondBus, call).type(), QDBusMessage::ErrorMessage);
    EXPECT_EQ(opened_, 0);
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
    first.setPerform(count_);
    first.release();
    // Under its own name: who found it just before it let go.
    const QDBusMessage answer =
        ask(bus_.connect(),
            QDBusMessage::createMethodCall(firstBus_.baseService(), SingleInstance::kPath,
                                           SingleInstance::kInterface, "Activate")
                << QVariantMap());
    EXPECT_EQ(answer.type(), QDBusMessage::ErrorMessage);
    EXPECT_EQ(opened_, 0);
    EXPECT_EQ(secondStart(), Claim::first);
}

TEST_F(OnBus, AFirstOnAnotherBusIsNoticed) {
    SingleInstance first(firstBus_, folder());
    ASSERT_EQ(first.claim(), Claim::first);
    PrivateBus later;
    EXPECT_EQ(secondStart(later, folder()), Claim::unanswered);
    // It keeps nothing there that it does not serve.
    EXPECT_FALSE(later.connect().interface()->isServiceRegistered(SingleInstance::kService));
    first.release();
    EXPECT_EQ(secondStart(later, folder()), Claim::first);
}

TEST_F(OnBus, AFirstThatHadNoBusIsNoticed) {
    SingleInstance first(noBus(), folder());
    ASSERT_EQ(first.claim(), Claim::first);
    EXPECT_EQ(secondStart(folder()), Claim::unanswered);
}

TEST_F(OnBus, AFirstOnABusIsNoticedWithoutOne) {
    SingleInstance first(firstBus_, folder());
    ASSERT_EQ(first.claim(), Claim::first);
    EXPECT_EQ(SingleInstance(noBus(), folder()).claim(), Claim::unanswered);
}

class WithoutBus : public ::testing::Test {
 protected:
    Claim start(const QString& folder, const QString& display = {}) const {
        return SingleInstance(noBus(), folder, display).claim();
    }
    QString folder() const { return folder_.path(); }

    QTemporaryDir folder_;
};

TEST_F(WithoutBus, TheSecondStartNoticesTheFirst) {
    SingleInstance first(noBus(), folder());
    EXPECT_EQ(first.claim(), Claim::first);
    EXPECT_EQ(start(folder()), Claim::unanswered);
    EXPECT_EQ(start(folder()), Claim::unanswered);
    first.release();
    first.release();
    EXPECT_EQ(start(folder()), Claim::first);
    // That one has ended.
    EXPECT_EQ(start(folder()), Claim::first);
}

TEST_F(WithoutBus, AStartWhileTheFirstIsEndingIsTheNextFirst) {
    SingleInstance first(noBus(), folder());
    ASSERT_EQ(first.claim(), Claim::first);
    const QStringList files = QDir(folder()).entryList(QDir::Files);
    ASSERT_EQ(files.size(), 1);
    const int watch = inotify_init1(IN_CLOEXEC);
    ASSERT_GE(inotify_add_watch(watch, qPrintable(folder_.filePath(files.front())), IN_OPEN), 0);
    Claim result = Claim::unanswered;
    std::thread second([&] { result = start(folder()); });
    // The first one ends when the second one has found its lock and asks for the owner.
    pollfd found{watch, POLLIN, 0};
    EXPECT_EQ(poll(&found, 1, 30'000), 1);
    first.release();
    second.join();
    close(watch);
    EXPECT_EQ(result, Claim::first);
}

TEST_F(WithoutBus, WhatACrashLeftBehindDoesNotBlock) {
    const pid_t crashing = fork();
    if (crashing == 0) {
        SingleInstance first(noBus(), folder());
        _exit(first.claim() == Claim::first ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(waitpid(crashing, &status, 0), crashing);
    ASSERT_EQ(WEXITSTATUS(status), 0);
    ASSERT_EQ(QDir(folder()).entryList(QDir::Files).size(), 1);
    EXPECT_EQ(start(folder()), Claim::first);
}

TEST_F(WithoutBus, EveryDisplayHasItsOwn) {
    SingleInstance first(noBus(), folder(), ":0");
    ASSERT_EQ(first.claim(), Claim::first);
    EXPECT_EQ(start(folder(), ":1"), Claim::first);
    const QString long1 = "/run/user/1/" + QString(300, 'w') + "/wayland-1";
    SingleInstance longPath(noBus(), folder(), long1);
    EXPECT_EQ(longPath.claim(), Claim::first);
    EXPECT_EQ(start(folder(), long1), Claim::unanswered);
    EXPECT_EQ(start(folder(), QString(long1).replace("wayland-1", "wayland-2")), Claim::first);
    EXPECT_EQ(start(folder(), ":0"), Claim::unanswered);
}

TEST_F(WithoutBus, StartsUnguardedWhereTheFolderCannotBeUsed) {
    EXPECT_EQ(start({}), Claim::first);
    EXPECT_EQ(start(folder() + "/missing"), Claim::first);
}

}  // namespace
}  // namespace tarnwick::platform
