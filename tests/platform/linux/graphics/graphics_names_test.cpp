// SPDX-License-Identifier: MIT
#include "platform/linux/graphics/graphics_names.h"

#include <gtest/gtest.h>
#include <string>
#include <string_view>

#include "tests/platform/linux/machine_tree.h"

namespace tarnwick::platform {
namespace {

using testing::MachineTree;
using testing::recordedMachine;

constexpr std::string_view pciNames =
    "# names\n"
    "1002  Advanced Graphics\n"
    "\t73df  Navi 22 [Radeon RX 6700]\n"
    "\t\t1458 232e  Board of somebody\n"
    "\t744C  Navi 31 [Radeon RX 7900 XT/7900 XTX]\n"
    "\t9999  Chip with [brackets] inside\n"
    "\t999a  Empty []\n"
    "\t999b  [Only brackets]\n"
    "\t999c  \n"
    "10de  Another Corporation\n"
    "\t2684  AD102 [GeForce RTX 4090]\n"
    "\t73df  Of another vendor\n"
    "C 03  Display controller\n"
    "\t00  VGA compatible controller\n";

std::string nameIn(std::string_view database, std::string_view vendor, std::string_view device,
                   std::string_view revision = "") {
    const MachineTree tree;
    tree.write("usr/share/misc/pci.ids", database);
    return graphicsName(tree.root(), vendor, device, revision);
}

TEST(GraphicsName, IsTheOneUnderWhichTheCardIsSold) {
    EXPECT_EQ(nameIn(pciNames, "1002", "73df"), "Radeon RX 6700");
    EXPECT_EQ(nameIn(pciNames, "10de", "2684"), "GeForce RTX 4090");
    EXPECT_EQ(nameIn(pciNames, "1002", "999b"), "Only brackets");
}

TEST(GraphicsName, WithoutSuchANameIsThatOfTheChip) {
    EXPECT_EQ(nameIn(pciNames, "1002", "9999"), "Chip with [brackets] inside");
    EXPECT_EQ(nameIn(pciNames, "1002", "999a"), "Empty []");
}

TEST(GraphicsName, DigitsMayBeInEitherCase) {
    EXPECT_EQ(nameIn(pciNames, "1002", "744c"), "Radeon RX 7900 XT/7900 XTX");
}

TEST(GraphicsName, IsThatOfTheRightVendor) {
    EXPECT_EQ(nameIn(pciNames, "10de", "73df"), "Of another vendor");
    EXPECT_EQ(nameIn(pciNames, "1002", "2684"), "");
    EXPECT_EQ(nameIn(pciNames, "8086", "73df"), "");
}

TEST(GraphicsName, IsEmptyWhereItIsUnknown) {
    EXPECT_EQ(nameIn(pciNames, "1002", "1458"), "");
    EXPECT_EQ(nameIn(pciNames, "1002", "999c"), "");
    EXPECT_EQ(nameIn(pciNames, "", ""), "");
    EXPECT_EQ(nameIn("", "1002", "73df"), "");
    EXPECT_EQ(graphicsName("/no such machine", "1002", "73df", "c1"), "");
    EXPECT_EQ(graphicsName(recordedMachine("damaged"), "1002", "744c", "c8"), "");
    EXPECT_EQ(graphicsName(recordedMachine("damaged"), "8086", "46a6", "0c"), "[");
}

TEST(GraphicsName, EitherPlaceOfTheDatabaseWillDo) {
    EXPECT_EQ(graphicsName(recordedMachine("handheld"), "1002", "163f", "ae"),
              "AMD Custom GPU 0405");
    EXPECT_EQ(graphicsName(recordedMachine("laptop"), "8086", "46a6", "0c"), "Iris Xe Graphics");
    EXPECT_EQ(graphicsName(recordedMachine("two-batteries"), "8086", "1916", "07"),
              "HD Graphics 520");
}

TEST(GraphicsName, ATruncatedDatabaseNeverGivesAnotherName) {
    for (std::size_t size = 0; size < pciNames.size(); ++size) {
        const std::string name = nameIn(pciNames.substr(0, size), "1002", "73df");
        ASSERT_TRUE(name.empty() || name == "Radeon RX 6700") << size << name;
    }
}

TEST(GraphicsName, IsFoundFarDownInALargeFile) {
    std::string database = "0001  First\n";
    for (int line = 0; line < 5000; ++line) {
        database += "\t0000  A device of many, with a name of some length\n";
    }
    EXPECT_EQ(nameIn(database + std::string(pciNames), "10de", "2684"), "GeForce RTX 4090");
}

TEST(GraphicsName, ALineWithoutEndIsLeftOut) {
    const std::string longLine =
        "\t73df  " + std::string(40000, 'x') + "\n" + std::string(40000, 'y') + "1002  No\n";
    EXPECT_EQ(nameIn("1002  A\n" + longLine + "\t73df  Right\n", "1002", "73df"), "Right");
    EXPECT_EQ(nameIn(std::string(100000, '1'), "1111", "1111"), "");
}

TEST(GraphicsName, OfAnAmdCardKnowsTheRevision) {
    const MachineTree tree;
    tree.write("usr/share/misc/pci.ids", pciNames);
    tree.write("usr/share/libdrm/amdgpu.ids",
               "# device_id,\trevision_id,\tproduct_name\n"
               "1.0.0\n"
               "744C,\tC8,\tAMD Radeon RX 7900 XTX\n"
               "744C,\tCC,\tAMD Radeon RX 7900 XT, second\n"
               "744C,\tCE,\t\n"
               "73DF\n");
    EXPECT_EQ(graphicsName(tree.root(), "1002", "744c", "c8"), "AMD Radeon RX 7900 XTX");
    EXPECT_EQ(graphicsName(tree.root(), "1002", "744c", "cc"), "AMD Radeon RX 7900 XT, second");
    for (const std::string_view unknown : {"c9", "ce", ""}) {
        EXPECT_EQ(graphicsName(tree.root(), "1002", "744c", unknown), "Radeon RX 7900 XT/7900 XTX");
    }
    EXPECT_EQ(graphicsName(tree.root(), "1002", "73df", "c1"), "Radeon RX 6700");
    EXPECT_EQ(graphicsName(tree.root(), "10de", "744c", "c8"), "");
}

}  // namespace
}  // namespace tarnwick::platform
