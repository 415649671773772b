// SPDX-License-Identifier: MIT
// The runner with real children. Where a child is to be too slow, the clock is turned once the
// child has printed what shows how far it has come.
#include "services/process_runner.h"

#include <csignal>
#include <fstream>
#include <gtest/gtest.h>
#include <limits>

#include "tests/platform/linux/temporary_folder.h"
#include "tests/platform/macos/posix/real_children.h"

namespace tarnwick {
namespace {

using platform::ChildProcess;

class RunReal : public platform::testing::RealChildren {
 protected:
    std::optional<std::string> run(std::vector<std::string> arguments,
                                   std::size_t limit = 1'048'576) {
        return runAt(program(), std::move(arguments), limit);
    }
    std::optional<std::string> runAt(const std::string& path, std::vector<std::string> arguments,
                                     std::size_t limit = 1'048'576) {
        return ProcessRunner(watching, [this] { return isTooLate() ? 4.0 : 0.0; })
            .run({.path = path,
                  .arguments = std::move(arguments),
                  .outputLimit = limit,
                  .timeout = 3});
    }
    /// The deadline passes once so many bytes have been read.
    void expireAfter(std::size_t bytes) { bytesUntilDeadline = bytes; }
    const platform::testing::Watched& watched() const { return watching.watched; }

    platform::testing::WatchedChildProcesses watching{processes};
    std::size_t bytesUntilDeadline = std::numeric_limits<std::size_t>::max();
    bool expiresAtEnd = false;

 private:
    bool isTooLate() const {
        return watched().bytes >= bytesUntilDeadline || (expiresAtEnd && watched().ended);
    }
};

TEST_F(RunReal, GivesTheOutputOfAChildThatPrintsAndEndsWith0) {
    EXPECT_EQ(run({"print", "some text"}), "some text");
    EXPECT_EQ(run({"print", ""}), "");
    EXPECT_EQ(watched().status, 0);
}

TEST_F(RunReal, HandsArgumentsOverAsTheyAre) {
    const std::string odd = " a \"b\" $HOME *\n'\\ \xc3\xa4";
    EXPECT_EQ(run({"print", odd}), odd);
}

TEST_F(RunReal, GivesNothingOfAChildThatEndsWith3) {
    EXPECT_EQ(run({"exit", "3"}), std::nullopt);
    EXPECT_EQ(watched().status, 3);
    EXPECT_EQ(watched().bytes, 4U);
}

TEST_F(RunReal, GivesNothingOfAChildThatASignalEnds) {
    EXPECT_EQ(run({"raise", std::to_string(SIGKILL)}), std::nullopt);
    EXPECT_EQ(watched().status, -SIGKILL);
}

TEST_F(RunReal, TakesAsMuchAsTheLimit) {
    const auto output = run({"fill", "1048576"});
    ASSERT_TRUE(output.has_value());
    EXPECT_EQ(*output, std::string(1'048'576, 'x'));
}

TEST_F(RunReal, EndsAChildThatPrintsMoreThanTheLimit) {
    EXPECT_EQ(run({"fill", "1048577"}), std::nullopt);
    EXPECT_EQ(run({"fill", "50000000"}, 100'000), std::nullopt);
    EXPECT_EQ(run({"forever"}, 100'000), std::nullopt);
    EXPECT_EQ(watched().started, 3);
    EXPECT_EQ(watched().status, -SIGTERM);
}

TEST_F(RunReal, EndsAChildThatPrintsForTooLong) {
    expireAfter(200'000);
    EXPECT_EQ(run({"forever"}), std::nullopt);
    EXPECT_EQ(watched().status, -SIGTERM);
}

TEST_F(RunReal, EndsAChildThatStaysSilentForTooLong) {
    expireAfter(4);
    EXPECT_EQ(run({"linger"}), std::nullopt);
    EXPECT_EQ(watched().status, -SIGTERM);
}

TEST_F(RunReal, EndsAChildThatIgnoresTheRequestToEnd) {
    expireAfter(5);
    EXPECT_EQ(run({"ignore"}), std::nullopt);
    EXPECT_EQ(watched().status, -SIGKILL);
}

TEST_F(RunReal, EndsAChildThatClosesItsOutputAndLingers) {
    expiresAtEnd = true;
    EXPECT_EQ(run({"close"}), std::nullopt);
    EXPECT_EQ(watched().bytes, 4U);
    EXPECT_EQ(watched().status, -SIGTERM);
}

TEST_F(RunReal, WaitsForAChildThatClosesItsOutputBeforeItEnds) {
    EXPECT_EQ(run({"close and succeed"}), "text");
}

TEST_F(RunReal, PutsPiecesOfOneByteTogether) {
    std::string text;
    for (int i = 0; i < 3000; ++i) {
        text += static_cast<char>('a' + i % 26);
    }
    EXPECT_EQ(run({"pieces", text}), text);
}

TEST_F(RunReal, GivesNothingWhenTheProgramIsMissing) {
    EXPECT_EQ(runAt(program() + " that is not there", {"print", "x"}), std::nullopt);
    EXPECT_EQ(runAt("", {"print", "x"}), std::nullopt);
    EXPECT_EQ(watched().started, 0);
}

TEST_F(RunReal, GivesNothingWhenTheProgramIsNotExecutable) {
    const testing::TemporaryFolder folder;
    const std::string file = folder / "plain";
    std::ofstream(file) << "#!/bin/sh\necho text\n";
    EXPECT_EQ(runAt(file, {}), std::nullopt);
    EXPECT_EQ(runAt(folder.path().native(), {}), std::nullopt);
    // Executable, but no program.
    std::filesystem::permissions(file, std::filesystem::perms::owner_all);
    std::ofstream(file, std::ios::trunc) << "no program\n";
    EXPECT_EQ(runAt(file, {}), std::nullopt);
    EXPECT_EQ(watched().started, 0);
}

TEST_F(RunReal, DoesNotWaitForAGrandchildThatHoldsTheOutput) {
    expireAfter(6);
    EXPECT_EQ(run({"grandchild"}), std::nullopt);
}

TEST_F(RunReal, LeavesNothingBehindAfterManyRuns) {
    for (int i = 0; i < 10; ++i) {
        EXPECT_EQ(run({"print", "x"}), "x");
        EXPECT_EQ(run({"exit", "1"}), std::nullopt);
    }
}

}  // namespace
}  // namespace tarnwick
