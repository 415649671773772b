#include "platform/linux/processes/process_identifiers.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>
#include <vector>

#include "tests/platform/linux/machine_tree.h"

namespace tarnwick::platform {
namespace {

TEST(ProcessIdentifier, IsANameOfDigits) {
    EXPECT_EQ(parseProcessIdentifier("1"), 1);
    EXPECT_EQ(parseProcessIdentifier("4194304"), 4194304);
    EXPECT_EQ(parseProcessIdentifier("2147483647"), 2147483647);
}

TEST(ProcessIdentifier, IsZeroForAnyOtherName) {
    for (const char* name : {"", ".", "..", "self", "0", "07", "-1", "+1", "1a", "1 ", " 1",
                             "2147483648", "99999999999999999999", "sys", "1.5"}) {
        EXPECT_EQ(parseProcessIdentifier(name), 0) << name;
    }
}

TEST(ProcessIdentifiers, RiseWhateverTheOrderOfTheFolder) {
    const testing::MachineTree tree;
    for (const char* name : {"9", "10", "100", "2", "self", "meminfo", "0", "33"}) {
        tree.makeFolder(name);
    }
    std::vector<std::int32_t> identifiers{1, 2, 3};
    EXPECT_TRUE(listProcessIdentifiers(tree.root(), identifiers));
    EXPECT_EQ(identifiers, (std::vector<std::int32_t>{2, 9, 10, 33, 100}));
}

TEST(ProcessIdentifiers, OfAnEmptyFolderAreNone) {
    const testing::MachineTree tree;
    std::vector<std::int32_t> identifiers{1};
    EXPECT_TRUE(listProcessIdentifiers(tree.root(), identifiers));
    EXPECT_TRUE(identifiers.empty());
}

TEST(ProcessIdentifiers, CannotBeListedWithoutTheFolder) {
    const testing::MachineTree tree;
    std::vector<std::int32_t> identifiers{1};
    EXPECT_FALSE(listProcessIdentifiers(tree.root() + "/proc", identifiers));
    EXPECT_TRUE(identifiers.empty());
    tree.write("proc", "not a folder");
    EXPECT_FALSE(listProcessIdentifiers(tree.root() + "/proc", identifiers));
}

TEST(ProcessIdentifiers, OfThisMachineHoldThisProcess) {
    std::vector<std::int32_t> identifiers;
    ASSERT_TRUE(listProcessIdentifiers("/proc", identifiers));
    EXPECT_TRUE(std::ranges::binary_search(identifiers, ::getpid()));
}

}  // namespace
}  // namespace tarnwick::platform
