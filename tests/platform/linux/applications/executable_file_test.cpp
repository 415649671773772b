// SPDX-License-Identifier: MIT
#include "platform/linux/applications/executable_file.h"

#include <filesystem>
#include <gtest/gtest.h>

#include "tests/platform/linux/machine_tree.h"

namespace tarnwick::platform {
namespace {

class ExecutableFile : public ::testing::Test {
 protected:
    void install(const std::string& path) const {
        tree.write(path, "");
        std::filesystem::permissions(tree.root() + '/' + path, std::filesystem::perms::owner_all);
    }
    std::string find(std::string_view name, std::string_view list = "/bin:/usr/bin") const {
        return findExecutable(name, list, tree.root()).native();
    }

    testing::MachineTree tree;
};

TEST_F(ExecutableFile, IsFoundInTheFirstFolderThatHasIt) {
    install("usr/bin/qps");
    EXPECT_EQ(find("qps"), tree.root() + "/usr/bin/qps");
    install("bin/qps");
    EXPECT_EQ(find("qps"), tree.root() + "/bin/qps");
    EXPECT_EQ(find("qps", "/usr/bin:/bin"), tree.root() + "/usr/bin/qps");
    EXPECT_EQ(find("ksysguard"), "");
}

TEST_F(ExecutableFile, IsItselfWhereItsPathIsGiven) {
    install("opt/monitor");
    EXPECT_EQ(find("/opt/monitor", ""), tree.root() + "/opt/monitor");
    EXPECT_EQ(find("/opt/other", ""), "");
    EXPECT_EQ(find("opt/monitor", "/"), "");
    EXPECT_EQ(find(""), "");
}

TEST_F(ExecutableFile, IsAFileThatMayBeExecuted) {
    tree.write("bin/text", "");
    std::filesystem::permissions(tree.root() + "/bin/text", std::filesystem::perms::owner_read);
    tree.makeFolder("bin/folder");
    EXPECT_EQ(find("text"), "");
    EXPECT_EQ(find("folder"), "");
}

TEST_F(ExecutableFile, IsNotLookedForWhereTheProgramHappensToBe) {
    install("bin/qps");
    EXPECT_EQ(find("qps", "bin:.::"), "");
}

}  // namespace
}  // namespace tarnwick::platform
