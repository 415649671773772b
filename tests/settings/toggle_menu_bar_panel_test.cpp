// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/testing/recording_log.h"
#include "platform/testing/scripted_status_item.h"
#include "settings/hot_key_service.h"

namespace tarnwick {
namespace {

using platform::LogLevel;
using platform::testing::RecordingLog;
using platform::testing::ScriptedStatusItem;
using testing::ElementsAre;
using testing::Pair;

TEST(ToggleMenuBarPanel, ClicksTheItemOnce) {
    ScriptedStatusItem item;
    RecordingLog log;
    EXPECT_TRUE(HotKeyService::toggleMenuBarPanel(item, platform::Logger(log)));
    EXPECT_EQ(item.clicks, 1);
    EXPECT_THAT(log.lines(),
                ElementsAre(Pair(LogLevel::info, "toggleMenuBarPanel() called"),
                            Pair(LogLevel::info, "Found NSStatusBarButton, performing click")));
}

TEST(ToggleMenuBarPanel, SaysWhatItFoundBeforeItClicks) {
    ScriptedStatusItem item;
    RecordingLog log;
    std::size_t linesAtTheClick = 0;
    item.setActions({.toggle = [&] { linesAtTheClick = log.lines().size(); }});
    HotKeyService::toggleMenuBarPanel(item, platform::Logger(log));
    EXPECT_EQ(linesAtTheClick, 2U);
}

TEST(ToggleMenuBarPanel, SaysWhenThereIsNothingToClick) {
    ScriptedStatusItem item;
    item.isInTray = false;
    RecordingLog log;
    EXPECT_FALSE(HotKeyService::toggleMenuBarPanel(item, platform::Logger(log)));
    EXPECT_EQ(item.clicks, 0);
    EXPECT_THAT(log.lines(), ElementsAre(Pair(LogLevel::info, "toggleMenuBarPanel() called"),
                                         Pair(LogLevel::error,
                                              "Could not find NSStatusBarButton in any window")));
}

}  // namespace
}  // namespace tarnwick
