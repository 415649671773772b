// SPDX-License-Identifier: MIT
#include "platform/linux/volumes/linux_volumes.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <optional>
#include <pwd.h>
#include <stdlib.h>
#include <string>
#include <string_view>
#include <sys/statvfs.h>
#include <unistd.h>
#include <utility>
#include <variant>
#include <vector>

#include "platform/linux/volumes/volume_capacity.h"
#include "services/storage_service.h"
#include "tests/platform/linux/machine_tree.h"

namespace tarnwick::platform {
namespace {

using testing::MachineTree;
using testing::recordedMachine;

std::optional<std::string> nameOf(LinuxVolumes& volumes, const std::string& path) {
    const auto values = volumes.resourceValues(path);
    const auto* found = std::get_if<VolumeResourceValues>(&values);
    EXPECT_NE(found, nullptr) << path;
    return found != nullptr ? found->name : std::nullopt;
}

std::string homeOfPasswordDatabase() {
    const passwd* const entry = ::getpwuid(::getuid());
    return entry != nullptr && entry->pw_dir[0] == '/' ? entry->pw_dir : "/";
}

// Sets $HOME for one test.
class HomeVariable {
 public:
    explicit HomeVariable(const char* value) {
        if (const char* const before = ::getenv("HOME")) {
            before_ = before;
        }
        if (value != nullptr) {
            ::setenv("HOME", value, 1);
        } else {
            ::unsetenv("HOME");
        }
    }
    HomeVariable(const HomeVariable&) = delete;
    HomeVariable& operator=(const HomeVariable&) = delete;
    ~HomeVariable() {
        if (before_) {
            ::setenv("HOME", before_->c_str(), 1);
        } else {
            ::unsetenv("HOME");
        }
    }

 private:
    std::optional<std::string> before_;
};

TEST(LinuxVolumes, HomeIsTheVariable) {
    const HomeVariable home("/somewhere/else");
    EXPECT_EQ(LinuxVolumes().homeDirectoryForCurrentUser(), "/somewhere/else");
}

TEST(LinuxVolumes, WithoutTheVariableHomeIsInThePasswordDatabase) {
    const HomeVariable home(nullptr);
    EXPECT_EQ(LinuxVolumes().homeDirectoryForCurrentUser(), homeOfPasswordDatabase());
}

TEST(LinuxVolumes, AnEmptyOrRelativeVariableDoesNotCount) {
    for (const char* const value : {"", "home", "./home", "~"}) {
        const HomeVariable home(value);
        EXPECT_EQ(LinuxVolumes().homeDirectoryForCurrentUser(), homeOfPasswordDatabase()) << value;
    }
}

TEST(LinuxVolumes, AGivenHomeFollowsTheSameRules) {
    EXPECT_EQ(LinuxVolumes("/", "/home/ada").homeDirectoryForCurrentUser(), "/home/ada");
    EXPECT_EQ(LinuxVolumes("/", "").homeDirectoryForCurrentUser(), homeOfPasswordDatabase());
    EXPECT_EQ(LinuxVolumes("/", "ada").homeDirectoryForCurrentUser(), homeOfPasswordDatabase());
}

TEST(LinuxVolumes, CapacityIsThatOfTheFileSystem) {
    const MachineTree tree;
    struct statvfs figures {};
    ASSERT_EQ(::statvfs(tree.root().c_str(), &figures), 0);
    LinuxVolumes volumes;
    const auto values = std::get<VolumeResourceValues>(volumes.resourceValues(tree.root()));
    const VolumeCapacity expected = volumeCapacity(figures);
    ASSERT_TRUE(values.totalCapacity);
    EXPECT_LE(*values.totalCapacity,
              static_cast<std::int64_t>(figures.f_blocks * figures.f_frsize));
    EXPECT_NEAR(static_cast<double>(*values.totalCapacity), static_cast<double>(expected.total),
                static_cast<double>(expected.total) / 100);
    ASSERT_TRUE(values.availableCapacity);
    EXPECT_GE(*values.availableCapacity, 0);
    EXPECT_LE(*values.availableCapacity, *values.totalCapacity);
    EXPECT_EQ(values.availableCapacityForImportantUsage, std::nullopt);
}

TEST(LinuxVolumes, BothSourcesOfTheCapacityAgree) {
    const MachineTree tree;
    LinuxVolumes volumes;
    const auto values = [&] {
        return std::get<VolumeResourceValues>(volumes.resourceValues(tree.root()));
    };
    bool compared = false;
    // Others may write to the file system between two readings.
    for (int turn = 0; turn < 1000 && !compared; ++turn) {
        const VolumeResourceValues before = values();
        const auto attributes = volumes.attributesOfFileSystemForPath(tree.root());
        ASSERT_TRUE(attributes);
        const VolumeResourceValues after = values();
        if (after.totalCapacity == before.totalCapacity &&
            after.availableCapacity == before.availableCapacity) {
            EXPECT_EQ(attributes->size, before.totalCapacity);
            EXPECT_EQ(attributes->freeSize, before.availableCapacity);
            compared = true;
        }
    }
    EXPECT_TRUE(compared);
}

TEST(LinuxVolumes, AMissingHomeHasANameAndNoCapacity) {
    LinuxVolumes volumes(recordedMachine("laptop"), "/home/nobody");
    const auto values = std::get<VolumeResourceValues>(
        volumes.resourceValues(volumes.homeDirectoryForCurrentUser()));
    EXPECT_EQ(values.name, "Ada's Disk");
    EXPECT_EQ(values.totalCapacity, std::nullopt);
    EXPECT_EQ(values.availableCapacity, std::nullopt);
    EXPECT_FALSE(volumes.attributesOfFileSystemForPath("/home/nobody"));

    const StorageInfo info = StorageService(volumes).readStorageInfo();
    EXPECT_EQ(info.name, "Ada's Disk");
    EXPECT_EQ(info.totalSpace, 0);
    EXPECT_EQ(info.availableSpace, 0);
    EXPECT_EQ(info.usedSpace, 0);
}

TEST(LinuxVolumes, AHomeBelowAFileHasNoCapacity) {
    LinuxVolumes volumes(recordedMachine("laptop"), "/dev/sda1/home");
    const StorageInfo info = StorageService(volumes).readStorageInfo();
    EXPECT_EQ(info.name, "/dev");
    EXPECT_EQ(info.totalSpace, 0);
}

TEST(LinuxVolumes, TheNameIsTheLabel) {
    LinuxVolumes volumes(recordedMachine("laptop"));
    EXPECT_EQ(nameOf(volumes, "/home/ada"), "Ada's Disk");
    EXPECT_EQ(nameOf(volumes, "/home/ada/"), "Ada's Disk");
    EXPECT_EQ(nameOf(volumes, "/"), "Ada's Disk");
}

TEST(LinuxVolumes, WithoutALabelTheNameIsTheMountPoint) {
    LinuxVolumes laptop(recordedMachine("laptop"));
    EXPECT_EQ(nameOf(laptop, "/mnt/Holiday Pictures"), "/mnt/Holiday Pictures");
    EXPECT_EQ(nameOf(laptop, "/mnt/shelf"), "/mnt/shelf");
    LinuxVolumes server(recordedMachine("server"));
    EXPECT_EQ(nameOf(server, "/home/ops"), "/home");
}

TEST(LinuxVolumes, ASourceThatOnlyReadsLikeADeviceHasNoLabel) {
    const MachineTree tree;
    tree.write("dev/sda1", "");
    tree.link("dev/disk/by-label/Foreign", "../../sda1");
    tree.makeFolder("home");
    tree.write("proc/self/mountinfo", "1 1 0:9 / /home rw - tmpfs dev/sda1 rw\n");
    LinuxVolumes volumes(tree.root());
    EXPECT_EQ(nameOf(volumes, "/home"), "/home");
    tree.write("proc/self/mountinfo", "1 1 8:1 / /home rw - ext4 /dev/sda1 rw\n");
    LinuxVolumes later(tree.root());
    EXPECT_EQ(nameOf(later, "/home"), "Foreign");
}

TEST(LinuxVolumes, TheMountPointIsToldWhereTheMountTableShowsIt) {
    const MachineTree tree;
    tree.makeFolder("home/ada");
    tree.write("proc/self/mountinfo", "1 1 8:1 / /home rw - ext4 /dev/sda1 rw\n");
    LinuxVolumes volumes(tree.root(), "/home/ada");
    EXPECT_EQ(StorageService(volumes).readStorageInfo().mountPoint, "/home");
    const MachineTree empty;
    empty.makeFolder("home/ada");
    LinuxVolumes unknown(empty.root(), "/home/ada");
    EXPECT_EQ(StorageService(unknown).readStorageInfo().mountPoint, "");
}

TEST(LinuxVolumes, WithoutMountsTheNameIsTheRoot) {
    LinuxVolumes old(recordedMachine("old-kernel"));
    EXPECT_EQ(nameOf(old, "/home/bob"), "/");
    LinuxVolumes damaged(recordedMachine("damaged"));
    EXPECT_EQ(nameOf(damaged, "/home"), "/");
    LinuxVolumes missing(recordedMachine("damaged"), "/home/nobody");
    EXPECT_EQ(StorageService(missing).readStorageInfo().name, "/");
}

TEST(LinuxVolumes, SymbolicLinksOnTheWayHomeAreFollowed) {
    const MachineTree tree("laptop");
    tree.link("home/grace", "../mnt/shelf");
    LinuxVolumes volumes(tree.root());
    EXPECT_EQ(nameOf(volumes, "/home/grace"), "/mnt/shelf");
}

TEST(LinuxVolumes, TheNameIsLookedUpAgainAfterAMinute) {
    const MachineTree tree("laptop");
    double now = 500;
    LinuxVolumes volumes(tree.root(), "/home/ada", [&now] { return now; });
    EXPECT_EQ(nameOf(volumes, "/home/ada"), "Ada's Disk");
    tree.remove("dev/disk/by-label");
    now += 59.9;
    EXPECT_EQ(nameOf(volumes, "/home/ada"), "Ada's Disk");
    now += 0.2;
    EXPECT_EQ(nameOf(volumes, "/home/ada"), "/home");
    EXPECT_EQ(nameOf(volumes, "/mnt/shelf"), "/mnt/shelf");
    EXPECT_EQ(nameOf(volumes, "/home/ada"), "/home");
}

TEST(LinuxVolumes, TheNameIsLookedUpAgainWhenTheClockWentBack) {
    const MachineTree tree("laptop");
    double now = 500;
    LinuxVolumes volumes(tree.root(), "/home/ada", [&now] { return now; });
    EXPECT_EQ(nameOf(volumes, "/home/ada"), "Ada's Disk");
    tree.remove("dev/disk/by-label");
    now -= 1;
    EXPECT_EQ(nameOf(volumes, "/home/ada"), "/home");
}

TEST(LinuxVolumes, TheNameIsLookedUpAgainWhenAnotherFileSystemIsMounted) {
    const MachineTree tree;
    const std::string home = tree.root() + "/home";
    struct statvfs before {};
    struct statvfs after {};
    ASSERT_EQ(::statvfs(tree.root().c_str(), &before), 0);
    ASSERT_EQ(::statvfs("/proc", &after), 0);
    if (before.f_fsid == after.f_fsid) {
        GTEST_SKIP() << "the file systems of this machine do not tell who they are";
    }
    // What a link leads to changes as what is mounted does.
    tree.link("home", ".");
    LinuxVolumes volumes("/", home, [] { return 500.0; });
    EXPECT_NE(nameOf(volumes, home), "/proc");
    tree.remove("home");
    tree.link("home", "/proc");
    EXPECT_EQ(nameOf(volumes, home), "/proc");
}

TEST(LinuxVolumes, TruncatedMountsNeverGiveAForeignName) {
    const MachineTree tree("laptop");
    double now = 0;
    LinuxVolumes volumes(tree.root(), "/home/ada", [&now] { return now += 100; });
    std::size_t size = testing::recordedFile("laptop", "proc/self/mountinfo").size();
    while (size-- > 0) {
        tree.truncate("proc/self/mountinfo", size);
        const std::optional<std::string> name = nameOf(volumes, "/home/ada");
        ASSERT_TRUE(name == "/" || name == "Ada's Disk") << size << name.value_or("none");
    }
}

TEST(RecordedVolumes, HaveTheirNames) {
    const std::vector<std::pair<std::string, std::string>> expected = {
        {"bcachefs", "tank"}, {"btrfs-on-two-devices", "/home"},
        {"container", "/"},   {"dev-root", "rootfs"},
        {"quota", "homes"},   {"zfs", "/home"}};
    std::vector<std::string> names;
    for (const auto& [name, volume] : expected) {
        names.push_back(name);
        LinuxVolumes volumes(recordedMachine("volumes/" + name), "/home/ada");
        EXPECT_EQ(StorageService(volumes).readStorageInfo().name, volume) << name;
    }
    EXPECT_EQ(names, testing::recordedMachines("volumes"));
}

/// File systems that answer as the test says, and what they were asked.
class AskedFileSystems : public ::testing::Test {
 protected:
    LinuxVolumes volumes(const std::string& root) {
        return LinuxVolumes(
            root, "/", [] { return 500.0; },
            FileSystemCalls{.label =
                                [this](const std::string& mountPoint) {
                                    asked.push_back("label " + mountPoint);
                                    return label;
                                },
                            .userQuota =
                                [this](const std::string& device) {
                                    asked.push_back("quota " + device);
                                    return quota;
                                }});
    }

    std::optional<std::string> label;
    std::optional<UserQuota> quota;
    std::vector<std::string> asked;
};

TEST_F(AskedFileSystems, AFileSystemOnSeveralDevicesTellsItsLabelItself) {
    label = "pool";
    LinuxVolumes disks = volumes(recordedMachine("volumes/btrfs-on-two-devices"));
    EXPECT_EQ(nameOf(disks, "/home/ada"), "pool");
    EXPECT_EQ(asked, std::vector<std::string>{"label /home"});
}

TEST_F(AskedFileSystems, ALabelCannotChangeTheTextAroundIt) {
    label = "a\u202Eb\nc\xFF";
    LinuxVolumes disks = volumes(recordedMachine("volumes/btrfs-on-two-devices"));
    EXPECT_EQ(nameOf(disks, "/home/ada"), "ab c\uFFFD");
}

TEST_F(AskedFileSystems, ALabelThatNobodySeesIsNone) {
    label = " \u200B";
    LinuxVolumes disks = volumes(recordedMachine("volumes/btrfs-on-two-devices"));
    EXPECT_EQ(nameOf(disks, "/home/ada"), "/home");
}

TEST_F(AskedFileSystems, WhatIsListedOrHasNoDeviceIsNotAsked) {
    label = "wrong";
    for (const auto& [machine, name] :
         {std::pair("dev-root", "rootfs"), {"bcachefs", "tank"}, {"zfs", "/home"}}) {
        LinuxVolumes disks = volumes(recordedMachine(std::string("volumes/") + machine));
        EXPECT_EQ(nameOf(disks, "/home/ada"), name);
    }
    EXPECT_TRUE(asked.empty());
}

TEST_F(AskedFileSystems, OnlyOneWithLimitsIsAskedForThem) {
    const MachineTree tree("volumes/quota");
    tree.makeFolder("home/ada");
    tree.makeFolder("srv");
    LinuxVolumes disks = volumes(tree.root());
    const auto all = disks.attributesOfFileSystemForPath("/srv");
    ASSERT_TRUE(all);
    EXPECT_EQ(asked, std::vector<std::string>{"label /"});
    asked.clear();
    quota = UserQuota{.softLimit = 0, .hardLimit = 100, .used = 40};
    const auto values = std::get<VolumeResourceValues>(disks.resourceValues("/home/ada"));
    EXPECT_EQ(values.totalCapacity, 100);
    EXPECT_EQ(values.availableCapacity, 60);
    EXPECT_EQ(disks.attributesOfFileSystemForPath("/home/ada")->freeSize, 60);
    EXPECT_EQ(asked, (std::vector<std::string>{"quota /dev/sda2", "quota /dev/sda2"}));
    // The user may not ask.
    quota.reset();
    EXPECT_GT(disks.attributesOfFileSystemForPath("/home/ada")->size.value_or(0), 100);
}

TEST(SystemCalls, GiveNothingWhereThereIsNothingToTell) {
    EXPECT_EQ(systemCalls().label("/proc"), std::nullopt);
    EXPECT_EQ(systemCalls().label("/no such folder"), std::nullopt);
    EXPECT_FALSE(systemCalls().userQuota("/dev/null"));
    EXPECT_FALSE(systemCalls().userQuota("/no such device"));
}

TEST(LabelIn, EndsAtANullByteOrNotAtAll) {
    EXPECT_EQ(labelIn(std::string_view("pool\0rest", 9)), "pool");
    EXPECT_EQ(labelIn("pool"), "pool");
    EXPECT_EQ(labelIn(std::string_view("\0\0", 2)), std::nullopt);
    EXPECT_EQ(labelIn(""), std::nullopt);
}

}  // namespace
}  // namespace tarnwick::platform
