// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <vector>

#include "platform/linux/desktop/session/appearance.h"
#include "tests/platform/linux/desktop/private_bus.h"
#include "tests/platform/linux/desktop/session/scripted_settings_portal.h"

namespace tarnwick::platform {
namespace {

using testing::ask;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::PrivateBus;
using testing::ScriptedSettingsPortal;
using testing::waitUntil;

constexpr auto kScheme = "org.freedesktop.appearance color-scheme";

class Scheme : public ::testing::Test {
 protected:
    Scheme() { portal_.values[kScheme] = 0U; }
    void follow() {
        scheme_ = std::make_unique<ColorScheme>(itemBus_,
                                                [this](bool dark) { changes_.push_back(dark); });
    }
    /// Makes more round trips than giving the name and asking take. Afterwards everything that the
    /// portal sent has arrived.
    void settle() {
        for (int i = 0; i < 4; ++i) {
            ping();
        }
    }
    void ping() {
        ask(itemBus_, QDBusMessage::createMethodCall("org.freedesktop.portal.Desktop",
                                                     ScriptedSettingsPortal::kPath,
                                                     "org.freedesktop.DBus.Peer", "Ping"));
    }

    PrivateBus bus_;
    QDBusConnection itemBus_ = bus_.connect();
    ScriptedSettingsPortal portal_{bus_.connect()};
    std::vector<bool> changes_;
    std::unique_ptr<ColorScheme> scheme_;
};

TEST_F(Scheme, IsAskedForByName) {
    portal_.begin();
    follow();
    EXPECT_TRUE(waitUntil([this] { return portal_.reads == 1; }));
    EXPECT_THAT(portal_.names, ElementsAre("org.tarnwick.Tarnwick"));
    EXPECT_EQ(portal_.readsBeforeName, 0);
}

TEST_F(Scheme, IsDarkWhenThePortalSaysSo) {
    portal_.values[kScheme] = 1U;
    portal_.begin();
    follow();
    EXPECT_FALSE(scheme_->dark());
    EXPECT_TRUE(waitUntil([&] { return scheme_->dark(); }));
    EXPECT_THAT(changes_, ElementsAre(true));
}

TEST_F(Scheme, IsLightForEveryOtherAnswer) {
    portal_.begin();
    for (const QVariant& value :
         {QVariant(0U), QVariant(2U), QVariant(17U), QVariant("dark"), QVariant(1.0)}) {
        portal_.values[kScheme] = value;
        const int before = portal_.reads;
        follow();
        ASSERT_TRUE(waitUntil([&] { return portal_.reads > before; }));
        settle();
        EXPECT_FALSE(scheme_->dark());
    }
    EXPECT_THAT(changes_, IsEmpty());
}

TEST_F(Scheme, FollowsEveryChange) {
    portal_.begin();
    follow();
    settle();
    portal_.change("org.freedesktop.appearance", "color-scheme", 1U);
    EXPECT_TRUE(waitUntil([&] { return scheme_->dark(); }));
    portal_.change("org.freedesktop.appearance", "color-scheme", 1U);
    portal_.change("org.freedesktop.appearance", "color-scheme", 2U);
    EXPECT_TRUE(waitUntil([&] { return !scheme_->dark(); }));
    EXPECT_THAT(changes_, ElementsAre(true, false));
}

TEST_F(Scheme, PassesOverOtherSettings) {
    portal_.begin();
    follow();
    portal_.change("org.gnome.desktop.interface", "color-scheme", 1U);
    portal_.change("org.freedesktop.appearance", "accent-color", 1U);
    settle();
    settle();
    EXPECT_FALSE(scheme_->dark());
    EXPECT_THAT(changes_, IsEmpty());
}

TEST_F(Scheme, StaysLightWithoutAPortalAndAsksWhenOneComes) {
    follow();
    settle();
    EXPECT_FALSE(scheme_->dark());
    portal_.values[kScheme] = 1U;
    portal_.begin();
    EXPECT_TRUE(waitUntil([&] { return scheme_->dark(); }));
}

TEST_F(Scheme, AsksAgainWhenThePortalWasRestarted) {
    portal_.values[kScheme] = 1U;
    portal_.begin();
    follow();
    ASSERT_TRUE(waitUntil([&] { return scheme_->dark(); }));
    portal_.end();
    portal_.values[kScheme] = 0U;
    portal_.begin();
    EXPECT_TRUE(waitUntil([&] { return !scheme_->dark(); }));
}

TEST_F(Scheme, IsLightWithoutABus) {
    ColorScheme alone(QDBusConnection("there is none"), {});
    EXPECT_FALSE(alone.dark());
}

}  // namespace
}  // namespace tarnwick::platform
