// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/session/quit_signals.h"

#include <QTimer>
#include <array>
#include <csignal>
#include <gtest/gtest.h>

#include "tests/platform/linux/desktop/private_bus.h"

namespace tarnwick::platform {
namespace {

using testing::waitUntil;

constexpr std::array kSignals = {SIGTERM, SIGINT, SIGHUP};

void handleOtherwise(int) {}

/// Undoes every change that a test makes to the signals.
class QuitSignalsTest : public ::testing::Test {
 protected:
    QuitSignalsTest() {
        for (std::size_t i = 0; i < kSignals.size(); ++i) {
            sigaction(kSignals[i], nullptr, &before_[i]);
            set(kSignals[i], SIG_DFL);
        }
    }
    ~QuitSignalsTest() override {
        for (std::size_t i = 0; i < kSignals.size(); ++i) {
            sigaction(kSignals[i], &before_[i], nullptr);
        }
    }

    using Handler = void (*)(int);

    static void set(int signal, Handler handler) {
        struct sigaction action {};
        action.sa_handler = handler;
        sigaction(signal, &action, nullptr);
    }
    static Handler handlerOf(int signal) {
        struct sigaction action {};
        sigaction(signal, nullptr, &action);
        return action.sa_handler;
    }

    int quits = 0;

 private:
    std::array<struct sigaction, kSignals.size()> before_{};
};

TEST_F(QuitSignalsTest, EachSignalQuitsOnTheEventLoop) {
    const QuitSignals heard([this] { ++quits; });
    int expected = 0;
    for (const int signal : kSignals) {
        raise(signal);
        EXPECT_EQ(quits, expected) << "not within the signal's handler";
        ++expected;
        EXPECT_TRUE(waitUntil([&] { return quits == expected; })) << signal;
    }
}

TEST_F(QuitSignalsTest, SignalsThatComeTogetherQuitOnce) {
    const QuitSignals heard([this] { ++quits; });
    for (const int signal : kSignals) {
        raise(signal);
    }
    EXPECT_TRUE(waitUntil([&] { return quits > 0; }));
    // A second one would come in the turns after it.
    bool later = false;
    QTimer::singleShot(0, [&] { QTimer::singleShot(0, [&] { later = true; }); });
    EXPECT_TRUE(waitUntil([&] { return later; }));
    EXPECT_EQ(quits, 1);
}

TEST_F(QuitSignalsTest, WhatATerminalWouldSendStaysIgnored) {
    set(SIGHUP, SIG_IGN);
    set(SIGINT, SIG_IGN);
    {
        const QuitSignals heard([this] { ++quits; });
        EXPECT_EQ(handlerOf(SIGHUP), SIG_IGN);
        EXPECT_EQ(handlerOf(SIGINT), SIG_IGN);
        raise(SIGHUP);
        raise(SIGINT);
        // Behind what the others might have caused.
        raise(SIGTERM);
        EXPECT_TRUE(waitUntil([&] { return quits > 0; }));
        EXPECT_EQ(quits, 1);
    }
    EXPECT_EQ(handlerOf(SIGHUP), SIG_IGN);
    EXPECT_EQ(handlerOf(SIGINT), SIG_IGN);
}

TEST_F(QuitSignalsTest, TerminatingQuitsEvenWhereItWasIgnored) {
    set(SIGTERM, SIG_IGN);
    {
        const QuitSignals heard([this] { ++quits; });
        raise(SIGTERM);
        EXPECT_TRUE(waitUntil([&] { return quits == 1; }));
    }
    EXPECT_EQ(handlerOf(SIGTERM), SIG_IGN);
}

TEST_F(QuitSignalsTest, LeavesTheSignalsAsTheyWere) {
    set(SIGINT, handleOtherwise);
    {
        const QuitSignals heard([this] { ++quits; });
        for (const int signal : kSignals) {
            EXPECT_NE(handlerOf(signal), SIG_DFL);
        }
        EXPECT_NE(handlerOf(SIGINT), handleOtherwise);
    }
    EXPECT_EQ(handlerOf(SIGTERM), SIG_DFL);
    EXPECT_EQ(handlerOf(SIGHUP), SIG_DFL);
    EXPECT_EQ(handlerOf(SIGINT), handleOtherwise);
}

}  // namespace
}  // namespace tarnwick::platform
