// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/session/display_end.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>
#include <unistd.h>

#include "tests/platform/linux/child_process.h"

namespace tarnwick::platform {
namespace {

using tarnwick::testing::ChildProcess;
using tarnwick::testing::Pipe;

constexpr int kToolkitsStatus = 1;

/// Ends the process when it is destroyed with the other objects that live as long as it.
struct Destroyed {
    ~Destroyed() { ::_exit(17); }
};

TEST(DisplayEnd, SavesWhatMustNotBeLostAndSucceeds) {
    Pipe pipe;
    ChildProcess child([&] {
        const DisplayEnd end([&pipe] { pipe.send(); });
        std::exit(kToolkitsStatus);
    });
    pipe.closeWriting();
    EXPECT_TRUE(pipe.receive());
    EXPECT_FALSE(pipe.receive());
    EXPECT_EQ(child.wait(), EXIT_SUCCESS);
}

TEST(DisplayEnd, DestroysNothingThatWasThereBefore) {
    ChildProcess child([] {
        static const Destroyed longLived;
        const DisplayEnd end([] {});
        std::exit(kToolkitsStatus);
    });
    EXPECT_EQ(child.wait(), EXIT_SUCCESS);
}

TEST(DisplayEnd, HasNoPartInAnEndThatComesLater) {
    Pipe pipe;
    ChildProcess child([&] {
        // Runs after what is tested, and before the toolkit would wait for its threads, which a
        // copy of the process does not have.
        std::atexit([] { ::_exit(kToolkitsStatus); });
        {
            const DisplayEnd end([&pipe] { pipe.send(); });
        }
        std::exit(EXIT_SUCCESS);
    });
    pipe.closeWriting();
    EXPECT_FALSE(pipe.receive());
    EXPECT_EQ(child.wait(), kToolkitsStatus);
}

}  // namespace
}  // namespace tarnwick::platform
