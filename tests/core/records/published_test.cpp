// SPDX-License-Identifier: MIT
#include "core/records/published.h"

#include <gtest/gtest.h>
#include <string>
#include <utility>

namespace tarnwick {
namespace {

class Model : public ObservableObject {
 public:
    Published<int> first{*this, 1};
    Published<std::string> second{*this};
};

TEST(Published, AnnouncesBeforeTheWrite) {
    Model model;
    int seenByField = 0;
    int seenByObject = 0;
    const auto field = model.first.willChange([&] { seenByField = *model.first; });
    const auto object = model.objectWillChange([&] { seenByObject = *model.first; });
    model.first.set(5);
    EXPECT_EQ(seenByField, 1);
    EXPECT_EQ(seenByObject, 1);
    EXPECT_EQ(*model.first, 5);
}

TEST(Published, AFieldAnnouncesOnlyItsOwnWrites) {
    Model model;
    int field = 0;
    int object = 0;
    const auto a = model.first.willChange([&] { ++field; });
    const auto b = model.objectWillChange([&] { ++object; });
    model.second.set("x");
    EXPECT_EQ(field, 0);
    EXPECT_EQ(object, 1);
    model.first.set(2);
    EXPECT_EQ(field, 1);
    EXPECT_EQ(object, 2);
}

TEST(Published, AnEqualValueIsAnnouncedToo) {
    Model model;
    int count = 0;
    const auto a = model.first.willChange([&] { ++count; });
    model.first.set(1);
    EXPECT_EQ(count, 1);
}

TEST(Published, AChangeInPlaceIsAnnouncedBeforeItHappens) {
    Model model;
    model.second.set("a");
    std::string seenByField;
    std::string seenByObject;
    const auto field = model.second.willChange([&] { seenByField = *model.second; });
    const auto object = model.objectWillChange([&] { seenByObject = *model.second; });
    model.second.update([](std::string& text) { text += 'b'; });
    EXPECT_EQ(seenByField, "a");
    EXPECT_EQ(seenByObject, "a");
    EXPECT_EQ(*model.second, "ab");
}

TEST(Published, ACancelledObserverIsNotCalled) {
    Model model;
    int count = 0;
    {
        const auto a = model.first.willChange([&] { ++count; });
        model.first.set(2);
    }
    model.first.set(3);
    EXPECT_EQ(count, 1);
}

TEST(Published, AnObserverCancelledDuringTheAnnouncementIsNotCalled) {
    Model model;
    int count = 0;
    Subscription second;
    const auto first = model.first.willChange([&] { second.cancel(); });
    second = model.first.willChange([&] { ++count; });
    model.first.set(2);
    EXPECT_EQ(count, 0);
}

TEST(Published, AnObserverAddedDuringTheAnnouncementIsCalledFromTheNextOn) {
    Model model;
    int count = 0;
    Subscription late;
    bool added = false;
    const auto first = model.first.willChange([&] {
        if (!std::exchange(added, true)) {
            late = model.first.willChange([&] { ++count; });
        }
    });
    model.first.set(2);
    EXPECT_EQ(count, 0);
    model.first.set(3);
    EXPECT_EQ(count, 1);
}

TEST(Published, ASubscriptionMayOutliveTheObject) {
    Subscription kept;
    {
        Model model;
        kept = model.objectWillChange([] {});
    }
    kept.cancel();
}

}  // namespace
}  // namespace tarnwick
