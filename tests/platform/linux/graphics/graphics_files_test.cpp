#include "platform/linux/graphics/graphics_files.h"

#include <gtest/gtest.h>
#include <string_view>

#include "tests/platform/linux/machine_tree.h"

namespace tarnwick::platform {
namespace {

using testing::recordedFile;

TEST(GraphicsIdentity, IsThatOfTheDevice) {
    const GraphicsIdentity identity =
        parseGraphicsIdentity(recordedFile("workstation", "sys/class/drm/card1/device/uevent"));
    EXPECT_EQ(identity.driver, "amdgpu");
    EXPECT_EQ(identity.slot, "0000:0b:00.0");
    EXPECT_EQ(identity.vendor, "1002");
    EXPECT_EQ(identity.device, "744c");
    EXPECT_EQ(identity.deviceClass, 0x0300U);
}

TEST(GraphicsIdentity, OfADeviceThatIsOnNoBusHasItsDriver) {
    const GraphicsIdentity identity =
        parseGraphicsIdentity("DRIVER=panfrost\nOF_NAME=gpu\nMODALIAS=of:Ngpu\n");
    EXPECT_EQ(identity, GraphicsIdentity{.driver = "panfrost"});
}

TEST(GraphicsIdentity, LeavesOutWhatIsDamaged) {
    for (const std::string_view text :
         {"", "\n", "=\n", "DRIVER", "DRIVER=amdgpu", "PCI_ID=80\n", "PCI_ID=8086:46a\n",
          "PCI_ID=8086-46A6\n", "PCI_ID=80x6:46A6\n", "PCI_ID=8086:46A6 \n", "PCI_ID=\n",
          "PCI_CLASS=soon\n", "PCI_SLOT_NAME\n"}) {
        EXPECT_EQ(parseGraphicsIdentity(text), GraphicsIdentity{}) << text;
    }
}

TEST(GraphicsIdentity, ATruncatedTextNeverGivesAnotherIdentity) {
    const std::string text = recordedFile("workstation", "sys/class/drm/card1/device/uevent");
    const GraphicsIdentity whole = parseGraphicsIdentity(text);
    for (std::size_t size = 0; size < text.size(); ++size) {
        const GraphicsIdentity part = parseGraphicsIdentity(std::string_view(text).substr(0, size));
        EXPECT_TRUE(part.driver.empty() || part.driver == whole.driver);
        EXPECT_TRUE(part.slot.empty() || part.slot == whole.slot);
        EXPECT_TRUE(part.vendor.empty() || part.vendor == whole.vendor);
        EXPECT_TRUE(part.device.empty() || part.device == whole.device);
        EXPECT_TRUE(part.deviceClass == 0 || part.deviceClass == whole.deviceClass);
    }
}

TEST(Count, IsAWholeNumberWithALineBreak) {
    EXPECT_EQ(parseCount("0\n"), 0U);
    EXPECT_EQ(parseCount("18446744073709551615\n"), 18446744073709551615U);
    for (const std::string_view text : {"", "\n", "5", "-5\n", "+5\n", " 5\n", "5 \n", "5\n\n",
                                        "5.0\n", "0x5\n", "soon\n", "18446744073709551616\n"}) {
        EXPECT_EQ(parseCount(text), std::nullopt) << text;
    }
}

TEST(Percentage, IsWithinItsBounds) {
    EXPECT_EQ(parsePercentage("0\n"), 0);
    EXPECT_EQ(parsePercentage("37\n"), 37);
    EXPECT_EQ(parsePercentage("100\n"), 100);
    for (const std::string_view text : {"", "37", "101\n", "4294967295\n", "-1\n", "37 %\n"}) {
        EXPECT_EQ(parsePercentage(text), std::nullopt) << text;
    }
}

TEST(FirstLine, HasNoWhiteSpaceAtItsEnds) {
    EXPECT_EQ(firstLineOf("active\n"), "active");
    EXPECT_EQ(firstLineOf("  Radeon Pro \nmore\n"), "Radeon Pro");
    EXPECT_EQ(firstLineOf("\n"), "");
    EXPECT_EQ(firstLineOf(""), "");
    EXPECT_EQ(firstLineOf("unfinished"), "unfinished");
}

TEST(Slot, HasDomainAndLocation) {
    EXPECT_EQ(locationOfSlot("0000:0b:00.0"), 0x0B00U);
    EXPECT_EQ(locationOfSlot("0001:c3:1f.7"), 0xC3FFU);
    EXPECT_EQ(domainOfSlot("0000:0b:00.0"), 0U);
    EXPECT_EQ(domainOfSlot("10ff:c3:1f.7"), 0x10FFU);
}

TEST(Slot, AnyOtherTextIsNone) {
    for (const std::string_view text :
         {"", "bind", "0b:00.0", "0000:0b:00.8", "0000:0b:20.0", "0000:0b:00:0", "0000-0b-00.0",
          "0000:0g:00.0", "0000:0b:00.0 ", "-000:0b:00.0", "0000:-b:00.0"}) {
        EXPECT_EQ(locationOfSlot(text), std::nullopt) << text;
        EXPECT_EQ(domainOfSlot(text), std::nullopt) << text;
    }
}

TEST(NamedCount, IsTheOneOfItsLine) {
    const std::string_view text = "simd_count 192\nsimd_per_cu 2\nbroken x\ncut 5";
    EXPECT_EQ(parseNamedCount(text, "simd_count"), 192U);
    EXPECT_EQ(parseNamedCount(text, "simd_per_cu"), 2U);
    EXPECT_EQ(parseNamedCount(text, "simd"), std::nullopt);
    EXPECT_EQ(parseNamedCount(text, "broken"), std::nullopt);
    EXPECT_EQ(parseNamedCount(text, "cut"), std::nullopt);
    EXPECT_EQ(parseNamedCount("", "cut"), std::nullopt);
}

}  // namespace
}  // namespace tarnwick::platform
