// SPDX-License-Identifier: MIT
#include "platform/linux/processes/kept_process_files.h"

#include <cstdint>
#include <filesystem>
#include <gtest/gtest.h>
#include <initializer_list>
#include <string>
#include <vector>

#include "tests/platform/linux/child_process.h"
#include "tests/platform/linux/files/descriptors.h"
#include "tests/platform/linux/machine_tree.h"

namespace tarnwick::platform {
namespace {

using tarnwick::testing::limitDescriptors;
using tarnwick::testing::openDescriptors;

class KeptProcessFilesTest : public ::testing::Test {
 protected:
    void write(std::int32_t identifier, const std::string& text) const {
        tree.write(std::to_string(identifier) + "/stat", text);
    }
    /// What one walk over these processes reads; "-" where there is nothing.
    std::vector<std::string> walk(std::initializer_list<std::int32_t> identifiers) {
        const FileDescriptor folder(tree.root());
        std::vector<std::string> read;
        files.beginWalk(folder);
        for (const std::int32_t identifier : identifiers) {
            read.emplace_back(files.read(identifier).value_or("-"));
        }
        files.endWalk();
        return read;
    }
    using Texts = std::vector<std::string>;

    testing::MachineTree tree;
    KeptProcessFiles files;
};

TEST_F(KeptProcessFilesTest, ReadsEachFileAsItIsNow) {
    write(1, "a");
    write(20, "b");
    EXPECT_EQ(walk({1, 20}), (Texts{"a", "b"}));
    write(1, "longer than before");
    write(20, "c");
    EXPECT_EQ(walk({1, 20}), (Texts{"longer than before", "c"}));
}

TEST_F(KeptProcessFilesTest, KeepsTheFilesOpenFromWalkToWalk) {
    write(1, "a");
    write(2, "b");
    const std::size_t before = openDescriptors();
    walk({1, 2});
    EXPECT_EQ(files.keptCount(), 2U);
    EXPECT_EQ(openDescriptors(), before + 2);
    // Read through the open file: the name leads nowhere any more.
    std::filesystem::rename(tree.root() + "/1", tree.root() + "/moved");
    EXPECT_EQ(walk({1, 2}), (Texts{"a", "b"}));
    EXPECT_EQ(openDescriptors(), before + 2);
}

TEST_F(KeptProcessFilesTest, ClosesTheFilesOfProcessesThatAreNotReadAnyMore) {
    for (const std::int32_t identifier : {1, 2, 3, 4, 5}) {
        write(identifier, std::to_string(identifier));
    }
    const std::size_t before = openDescriptors();
    walk({1, 2, 4, 5});
    EXPECT_EQ(walk({2, 3, 5}), (Texts{"2", "3", "5"}));
    EXPECT_EQ(files.keptCount(), 3U);
    EXPECT_EQ(openDescriptors(), before + 3);
    walk({});
    EXPECT_EQ(openDescriptors(), before);
}

TEST_F(KeptProcessFilesTest, AMissingOrEmptyFileGivesNothingAndIsNotKept) {
    write(1, "a");
    write(2, "");
    tree.makeFolder("3");
    EXPECT_EQ(walk({1, 2, 3, 4}), (Texts{"a", "-", "-", "-"}));
    EXPECT_EQ(files.keptCount(), 1U);
}

TEST_F(KeptProcessFilesTest, AKeptFileThatGivesNothingIsOpenedAgain) {
    write(7, "old");
    walk({7});
    // The old process has ended, a new one has its number.
    std::filesystem::rename(tree.root() + "/7", tree.root() + "/gone");
    tree.truncate("gone/stat", 0);
    write(7, "new");
    EXPECT_EQ(walk({7}), (Texts{"new"}));
    EXPECT_EQ(walk({7}), (Texts{"new"}));
    EXPECT_EQ(files.keptCount(), 1U);
}

TEST_F(KeptProcessFilesTest, ReleasingClosesEverything) {
    write(1, "a");
    write(2, "b");
    const std::size_t before = openDescriptors();
    walk({1, 2});
    files.release();
    EXPECT_EQ(openDescriptors(), before);
    EXPECT_EQ(walk({1, 2}), (Texts{"a", "b"}));
    EXPECT_EQ(openDescriptors(), before + 2);
}

TEST_F(KeptProcessFilesTest, UsesAtMostHalfOfTheDescriptors) {
    for (std::int32_t identifier = 1; identifier <= 100; ++identifier) {
        write(identifier, "x");
    }
    tarnwick::testing::ChildProcess child([this] {
        limitDescriptors(64);
        const std::size_t before = openDescriptors();
        const FileDescriptor folder(tree.root());
        // The second walk meets other processes: the old ones' files make room as it goes.
        for (const std::int32_t first : {1, 51, 1}) {
            files.beginWalk(folder);
            for (std::int32_t identifier = first; identifier <= 100; ++identifier) {
                EXPECT_TRUE(files.read(identifier)) << identifier;
                EXPECT_LE(openDescriptors(), before + 1 + 32);
            }
            files.endWalk();
            EXPECT_EQ(files.keptCount(), 32U);
        }
    });
    EXPECT_EQ(child.wait(), 0);
}

TEST_F(KeptProcessFilesTest, GivesItsFilesUpWhenNoDescriptorIsLeft) {
    for (std::int32_t identifier = 1; identifier <= 20; ++identifier) {
        write(identifier, "x");
    }
    tarnwick::testing::ChildProcess child([this] {
        limitDescriptors(64);
        const FileDescriptor folder(tree.root());
        // Other code takes all remaining descriptors while files are kept.
        files.beginWalk(folder);
        for (std::int32_t identifier = 1; identifier <= 10; ++identifier) {
            EXPECT_TRUE(files.read(identifier));
        }
        std::vector<FileDescriptor> others;
        do {
            others.emplace_back("/dev/null");
        } while (others.back().isOpen());
        for (std::int32_t identifier = 11; identifier <= 20; ++identifier) {
            EXPECT_TRUE(files.read(identifier)) << identifier;
        }
        files.endWalk();
        EXPECT_EQ(files.keptCount(), 0U);
        // Kept again as soon as there is room.
        others.clear();
        files.beginWalk(folder);
        EXPECT_TRUE(files.read(3));
        files.endWalk();
        EXPECT_EQ(files.keptCount(), 1U);
    });
    EXPECT_EQ(child.wait(), 0);
}

}  // namespace
}  // namespace tarnwick::platform
