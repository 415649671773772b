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

TEST(LabelOfDevice, IsTheLinkThatLeadsToIt) {
    EXPECT_EQ(labelOfDevice(recordedMachine("laptop"), "/dev/nvme0n1p3"), "Ada's Disk");
    EXPECT_EQ(labelOfDevice(recordedMachine("laptop"), "/dev/nvme0n1p1"), "EFI");
    EXPECT_EQ(labelOfDevice(recordedMachine("laptop"), "/dev/sda1"), std::nullopt);
}

TEST(LabelOfDevice, FollowsTheNamesOfLogicalVolumes) {
    const MachineTree tree("server");
    EXPECT_EQ(labelOfDevice(tree.root(), "/dev/mapper/vg0-home"), std::nullopt);
    tree.link("dev/disk/by-label/work", "../../dm-2");
    EXPECT_EQ(labelOfDevice(tree.root(), "/dev/mapper/vg0-home"), "work");
}

TEST(LabelOfDevice, TheFirstOfSeveralCounts) {
    const MachineTree tree;
    tree.write("dev/sda1", "");
    // The order in which the folder lists them does not matter.
    for (const std::string_view label :
         {"two", "three", "four", "five", "six", "seven", "eight", "nine", "ten", "eleven"}) {
        tree.link("dev/disk/by-label/" + std::string(label), "../../sda1");
    }
    EXPECT_EQ(labelOfDevice(tree.root(), "/dev/sda1"), "eight");
}

TEST(LabelOfDevice, BrokenLinksAndMissingDevicesGiveNone) {
    const MachineTree tree;
    EXPECT_EQ(labelOfDevice(tree.root(), "/dev/sda1"), std::nullopt);
    tree.link("dev/disk/by-label/lost", "../../sda1");
    tree.link("dev/disk/by-label/loop", "loop");
    EXPECT_EQ(labelOfDevice(tree.root(), "/dev/sda1"), std::nullopt);
    EXPECT_EQ(labelOfDevice("/no such machine", "/dev/sda1"), std::nullopt);
}

}  // namespace
}  // namespace tarnwick::platform
