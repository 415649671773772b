// SPDX-License-Identifier: MIT
#include "platform/linux/volumes/volume_label.h"

#include <gtest/gtest.h>
#include <string>
#include <string_view>

#include "tests/platform/linux/machine_tree.h"

namespace tarnwick::platform {
namespace {

using testing::MachineTree;
using testing::recordedMachine;

TEST(HexEscapes, AreDecoded) {
    EXPECT_EQ(decodedHexEscapes("My\\x20Disk"), "My Disk");
    EXPECT_EQ(decodedHexEscapes("a\\x5cx20\\x2F"), "a\\x20/");
    EXPECT_EQ(decodedHexEscapes("\\xc3\\xa9"), "\xc3\xa9");
}

TEST(HexEscapes, OtherBackslashesStay) {
    for (const std::string_view text : {"\\", "\\x", "\\x2", "\\xg0", "\\x2g", "\\y20", "\\x-1"}) {
        EXPECT_EQ(decodedHexEscapes(text), text);
    }
}

std::optional<std::string> labelOfSource(const std::string& root, const std::string& source) {
    return labelOf(root, {.mountPoint = "/", .source = source, .device = "0:40"});
}

TEST(LabelOf, IsTheLinkThatLeadsToTheSource) {
    EXPECT_EQ(labelOfSource(recordedMachine("laptop"), "/dev/nvme0n1p3"), "Ada's Disk");
    EXPECT_EQ(labelOfSource(recordedMachine("laptop"), "/dev/nvme0n1p1"), "EFI");
    EXPECT_EQ(labelOfSource(recordedMachine("laptop"), "/dev/sda1"), std::nullopt);
}

TEST(LabelOf, FollowsTheNamesOfLogicalVolumes) {
    const MachineTree tree("server");
    EXPECT_EQ(labelOfSource(tree.root(), "/dev/mapper/vg0-home"), std::nullopt);
    tree.link("dev/disk/by-label/work", "../../dm-2");
    EXPECT_EQ(labelOfSource(tree.root(), "/dev/mapper/vg0-home"), "work");
}

TEST(LabelOf, LooksAtEachDeviceOfTheSource) {
    const std::string root = recordedMachine("volumes/bcachefs");
    EXPECT_EQ(labelOfSource(root, "/dev/sda:/dev/sdb"), "tank");
    EXPECT_EQ(labelOfSource(root, "/dev/sdb:/dev/sda"), "tank");
    EXPECT_EQ(labelOfSource(root, "/dev/sda"), std::nullopt);
    EXPECT_EQ(labelOfSource(root, ":"), std::nullopt);
    EXPECT_EQ(labelOfSource(root, "dev/sdb"), std::nullopt);
}

TEST(LabelOf, LooksForTheNumberOfTheDevice) {
    const std::string root = recordedMachine("volumes/dev-root");
    const auto label = [&root](const std::string& device) {
        return labelOf(root, {.mountPoint = "/", .source = "/dev/root", .device = device});
    };
    EXPECT_EQ(label("179:2"), "rootfs");
    EXPECT_EQ(label("179:1"), "bootfs");
    EXPECT_EQ(label("179:3"), std::nullopt);
    EXPECT_EQ(label("179"), std::nullopt);
    EXPECT_EQ(label(""), std::nullopt);
}

TEST(LabelOf, TheFirstOfSeveralCounts) {
    const MachineTree tree;
    tree.write("dev/sda1", "");
    // The order in which the folder lists them does not matter.
    for (const std::string_view label :
         {"two", "three", "four", "five", "six", "seven", "eight", "nine", "ten", "eleven"}) {
        tree.link("dev/disk/by-label/" + std::string(label), "../../sda1");
    }
    EXPECT_EQ(labelOfSource(tree.root(), "/dev/sda1"), "eight");
}

TEST(LabelOf, BrokenLinksAndMissingDevicesGiveNone) {
    const MachineTree tree;
    EXPECT_EQ(labelOfSource(tree.root(), "/dev/sda1"), std::nullopt);
    tree.link("dev/disk/by-label/lost", "../../sda1");
    tree.link("dev/disk/by-label/loop", "loop");
    EXPECT_EQ(labelOfSource(tree.root(), "/dev/sda1"), std::nullopt);
    EXPECT_EQ(labelOfSource("/no such machine", "/dev/sda1"), std::nullopt);
}

}  // namespace
}  // namespace tarnwick::platform
