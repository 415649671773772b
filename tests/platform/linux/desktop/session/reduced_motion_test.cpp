// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
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

struct Says {
    const char* space;
    const char* key;
    QVariant less;
    QVariant usual;
};

const std::vector<Says>& settings() {
    static const std::vector<Says> all = {
        {"org.freedesktop.appearance", "reduced-motion", 1U, 0U},
        {"org.gnome.desktop.interface", "enable-animations", false, true},
        {"org.kde.kdeglobals.KDE", "AnimationDurationFactor", "0", "1.5"},
    };
    return all;
}

class Reduced : public ::testing::Test {
 protected:
    void follow() {
        motion_ = std::make_unique<ReducedMotion>(
            itemBus_, [this](bool isReduced) { changes_.push_back(isReduced); });
    }
    /// Makes more round trips than giving the name and asking take. Afterwards everything that the
    /// portal sent has arrived.
    void settle() {
        for (int i = 0; i < 4; ++i) {
            ask(itemBus_, QDBusMessage::createMethodCall("org.freedesktop.portal.Desktop",
                                                         ScriptedSettingsPortal::kPath,
                                                         "org.freedesktop.DBus.Peer", "Ping"));
        }
    }

    PrivateBus bus_;
    QDBusConnection itemBus_ = bus_.connect();
    ScriptedSettingsPortal portal_{bus_.connect()};
    std::vector<bool> changes_;
    std::unique_ptr<ReducedMotion> motion_;
};

TEST_F(Reduced, IsSoWhenOneOfTheSettingsSaysSo) {
    for (const Says& each : settings()) {
        portal_.values = {{QString(each.space) + ' ' + each.key, each.less}};
        portal_.begin();
        follow();
        EXPECT_TRUE(waitUntil([this] { return motion_->isReduced(); })) << each.key;
        EXPECT_THAT(changes_, ElementsAre(true)) << each.key;
        changes_.clear();
        portal_.end();
    }
}

TEST_F(Reduced, IsNotSoForAnythingElse) {
    for (const Says& each : settings()) {
        for (const QVariant& value : {each.usual, QVariant("maybe"), QVariant(7.5), QVariant("")}) {
            portal_.values = {{QString(each.space) + ' ' + each.key, value}};
            portal_.begin();
            follow();
            ASSERT_TRUE(waitUntil([this] { return portal_.reads >= 3; }));
            settle();
            EXPECT_FALSE(motion_->isReduced()) << each.key;
            EXPECT_THAT(changes_, IsEmpty()) << each.key;
            portal_.end();
            portal_.reads = 0;
        }
    }
}

TEST_F(Reduced, FollowsEveryChange) {
    portal_.begin();
    follow();
    settle();
    for (const Says& each : settings()) {
        changes_.clear();
        portal_.change(each.space, each.key, each.less);
        EXPECT_TRUE(waitUntil([this] { return motion_->isReduced(); })) << each.key;
        portal_.change(each.space, each.key, each.usual);
        EXPECT_TRUE(waitUntil([this] { return !motion_->isReduced(); })) << each.key;
        EXPECT_THAT(changes_, ElementsAre(true, false)) << each.key;
    }
}

TEST_F(Reduced, StaysSoWhileAnotherSettingStillSaysSo) {
    portal_.begin();
    follow();
    settle();
    portal_.change(settings()[0].space, settings()[0].key, settings()[0].less);
    portal_.change(settings()[1].space, settings()[1].key, settings()[1].less);
    portal_.change(settings()[0].space, settings()[0].key, settings()[0].usual);
    settle();
    ASSERT_TRUE(waitUntil([this] { return !changes_.empty(); }));
    settle();
    EXPECT_TRUE(motion_->isReduced());
    EXPECT_THAT(changes_, ElementsAre(true));
}

TEST_F(Reduced, IsNotSoWithoutAPortalOrABus) {
    follow();
    EXPECT_FALSE(motion_->isReduced());
    const ReducedMotion alone(QDBusConnection("there is none"), {});
    EXPECT_FALSE(alone.isReduced());
}

}  // namespace
}  // namespace tarnwick::platform
