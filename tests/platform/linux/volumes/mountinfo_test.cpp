// SPDX-License-Identifier: MIT
#include "platform/linux/volumes/mountinfo.h"

#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "tests/platform/linux/machine_tree.h"

namespace tarnwick::platform {
namespace {

using testing::recordedFile;

// The mount point and the source; neither where there is no mount.
std::pair<std::string, std::string> found(std::string_view text, std::string_view path) {
    const std::optional<Mount> mount = mountOf(text, path);
    return mount ? std::pair(mount->mountPoint, mount->source)
                 : std::pair<std::string, std::string>();
}

std::optional<std::string> mountPointOf(std::string_view text, std::string_view path) {
    const std::optional<Mount> mount = mountOf(text, path);
    return mount ? std::optional(mount->mountPoint) : std::nullopt;
}

TEST(MountOf, FindsTheLongestMountPoint) {
    const std::string text = recordedFile("laptop", "proc/self/mountinfo");
    EXPECT_EQ(found(text, "/home/ada"),
              std::pair(std::string("/home"), std::string("/dev/nvme0n1p3")));
    EXPECT_EQ(found(text, "/home"), std::pair(std::string("/home"), std::string("/dev/nvme0n1p3")));
    EXPECT_EQ(mountPointOf(text, "/"), "/");
    EXPECT_EQ(mountPointOf(text, "/homes"), "/");
    EXPECT_EQ(mountPointOf(text, "/boot/grub"), "/");
    EXPECT_EQ(mountPointOf(text, "/boot/efi/a"), "/boot/efi");
}

TEST(MountOf, AMountPointMayHoldSpaces) {
    EXPECT_EQ(found(recordedFile("laptop", "proc/self/mountinfo"), "/mnt/Holiday Pictures/2024"),
              std::pair(std::string("/mnt/Holiday Pictures"), std::string("/dev/sda1")));
}

TEST(MountOf, TheLastOfStackedMountsCoversTheOthers) {
    EXPECT_EQ(found(recordedFile("laptop", "proc/self/mountinfo"), "/mnt/shelf/a"),
              std::pair(std::string("/mnt/shelf"), std::string("/dev/sdb1")));
}

TEST(MountOf, OptionalFieldsMayBeMissingOrMany) {
    EXPECT_EQ(found("1 1 8:1 / / rw - ext4 /dev/a rw\n", "/x"),
              std::pair(std::string("/"), std::string("/dev/a")));
    EXPECT_EQ(found("1 1 8:1 / / rw shared:1 master:2 unbindable - ext4 /dev/a rw\n", "/x"),
              std::pair(std::string("/"), std::string("/dev/a")));
    EXPECT_EQ(found("1 1 0:9 / / rw - tmpfs  rw\n", "/x"),
              std::pair(std::string("/"), std::string("")));
}

TEST(MountOf, DamagedLinesArePassedOver) {
    for (const std::string_view line :
         {"", "\n", "1\n", "1 1 8:1 / /home rw\n", "1 1 8:1 / /home rw -\n",
          "1 1 8:1 / /home rw - ext4\n", "1 1 8:1 / /home rw - ext4 /dev/b\n",
          "1 1 8:1 / home rw - ext4 /dev/b rw\n"}) {
        EXPECT_EQ(mountPointOf("1 1 8:1 / / rw - ext4 /dev/a rw\n" + std::string(line), "/home/x"),
                  "/")
            << line;
    }
    EXPECT_EQ(mountOf(recordedFile("damaged", "proc/self/mountinfo"), "/home"), std::nullopt);
}

TEST(MountOf, ATruncatedTextGivesMountsThatAreInIt) {
    const std::string text = recordedFile("laptop", "proc/self/mountinfo");
    for (std::size_t size = 0; size < text.size(); ++size) {
        const std::optional<Mount> mount =
            mountOf(std::string_view(text).substr(0, size), "/home/ada");
        if (mount) {
            ASSERT_EQ(mount->source, "/dev/nvme0n1p3") << size;
            ASSERT_TRUE(mount->mountPoint == "/" || mount->mountPoint == "/home") << size;
        }
    }
}

TEST(MountOf, KnowsTheDeviceAndTheOptions) {
    EXPECT_EQ(mountOf(recordedFile("volumes/quota", "proc/self/mountinfo"), "/home/ada"),
              (Mount{.mountPoint = "/home",
                     .source = "/dev/sda2",
                     .device = "8:2",
                     .options = "rw,usrquota,grpquota"}));
}

TEST(HasUserQuota, IsAnOptionOfTheFileSystem) {
    for (const char* const options :
         {"usrquota", "rw,usrquota,grpquota", "rw,quota", "rw,jqfmt=vfsv1,usrjquota=aquota.user"}) {
        EXPECT_TRUE(hasUserQuota({.mountPoint = "", .source = "", .options = options})) << options;
    }
    for (const char* const options :
         {"", "rw", "rw,noquota", "rw,uqnoenforce", "rw,grpquota,prjquota", ",", "rw,usrquotas"}) {
        EXPECT_FALSE(hasUserQuota({.mountPoint = "", .source = "", .options = options})) << options;
    }
}

TEST(OctalEscapes, AreDecoded) {
    EXPECT_EQ(decodedOctalEscapes("a\\040b\\011c\\012d\\134e\\043"), "a b\tc\nd\\e#");
    EXPECT_EQ(decodedOctalEscapes("\\303\\251"), "\xc3\xa9");
}

TEST(OctalEscapes, OtherBackslashesStay) {
    for (const std::string_view text : {"\\", "\\0", "\\04", "\\08x", "\\400", "\\x20", "a\\"}) {
        EXPECT_EQ(decodedOctalEscapes(text), text);
    }
}

}  // namespace
}  // namespace tarnwick::platform
