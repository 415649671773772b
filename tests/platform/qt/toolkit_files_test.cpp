// SPDX-License-Identifier: MIT
#include "platform/qt/toolkit_files.h"

#include <gtest/gtest.h>

#include "platform/testing/manual_dispatch.h"

namespace tarnwick::qt {
namespace {

using platform::testing::ManualDispatch;

class FoldersOfPrograms : public ::testing::Test {
 protected:
    ManualDispatch dispatch{ManualDispatch::Background::byHand};
    int opened = 0;

    void ask() {
        afterFoldersOfPrograms(dispatch, [this] { ++opened; });
    }
    void answer() {
        dispatch.runDetached();
        dispatch.runMain();
    }
};

TEST_F(FoldersOfPrograms, AreWaitedForInTheBackground) {
    ask();
    dispatch.runMain();
    EXPECT_EQ(opened, 0);
    dispatch.sleep(2.9);
    answer();
    EXPECT_EQ(opened, 1);
}

TEST_F(FoldersOfPrograms, OpenNothingOnceTheUserHasGoneOn) {
    ask();
    ask();
    dispatch.sleep(3);
    answer();
    EXPECT_EQ(opened, 0);
    ask();
    answer();
    EXPECT_EQ(opened, 1);
}

}  // namespace
}  // namespace tarnwick::qt
