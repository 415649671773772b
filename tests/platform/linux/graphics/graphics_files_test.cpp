// SPDX-License-Identifier: MIT
#include "platform/linux/graphics/graphics_files.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

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
    EXPECT_EQ(parsePercentage("101\n"), 100);
    EXPECT_EQ(parsePercentage("120\n"), 100);
    for (const std::string_view text :
         {"", "37", "121\n", "65535\n", "4294967295\n", "-1\n", "37 %\n"}) {
        EXPECT_EQ(parsePercentage(text), std::nullopt) << text;
    }
}

TEST(Percentage, OfAFigureIsWithinItsBounds) {
    EXPECT_EQ(percentageOf(0), 0);
    EXPECT_EQ(percentageOf(99.5), 99.5);
    EXPECT_EQ(percentageOf(120), 100);
    for (const double figure : {-0.1, 120.1, 65535.0, std::numeric_limits<double>::infinity(),
                                std::numeric_limits<double>::quiet_NaN()}) {
        EXPECT_EQ(percentageOf(figure), std::nullopt) << figure;
    }
}

/// A table of amdgpu with `activity` at `offset`.
std::string metricsTable(int format, int content, std::size_t size, std::size_t offset,
                         std::uint16_t activity) {
    std::string table(size, '\0');
    const auto put = [&table](std::size_t place, std::size_t number) {
        table[place] = static_cast<char>(number & 0xFF);
        table[place + 1] = static_cast<char>(number >> 8);
    };
    put(0, size);
    table[2] = static_cast<char>(format);
    table[3] = static_cast<char>(content);
    put(offset, activity);
    return table;
}

TEST(AverageActivity, IsWhereTheLayoutHasIt) {
    EXPECT_EQ(parseAverageActivity(metricsTable(1, 0, 80, 28, 37)), 37);
    for (const int content : {1, 2, 3}) {
        EXPECT_EQ(parseAverageActivity(metricsTable(1, content, 96, 16, 37)), 37) << content;
    }
    for (const int content : {4, 5, 6, 7, 8}) {
        EXPECT_EQ(parseAverageActivity(metricsTable(1, content, 220, 12, 37)), 37) << content;
    }
}

TEST(AverageActivity, IsAbsentWhereItMeansSomethingElse) {
    EXPECT_EQ(parseAverageActivity(metricsTable(1, 3, 120, 16, 119)), 100);
    EXPECT_EQ(parseAverageActivity(metricsTable(1, 3, 120, 16, 121)), std::nullopt);
    EXPECT_EQ(parseAverageActivity(metricsTable(1, 3, 120, 16, 65535)), std::nullopt);
    // In percent or in hundredths, depending on the processor.
    EXPECT_EQ(parseAverageActivity(metricsTable(2, 2, 128, 28, 37)), std::nullopt);
    EXPECT_EQ(parseAverageActivity(metricsTable(3, 0, 264, 42, 37)), std::nullopt);
    EXPECT_EQ(parseAverageActivity(metricsTable(1, 9, 220, 12, 37)), std::nullopt);
    EXPECT_EQ(parseAverageActivity(metricsTable(1, 200, 220, 12, 37)), std::nullopt);
}

TEST(AverageActivity, OfACutTableIsAbsent) {
    const std::string table = metricsTable(1, 3, 120, 16, 37);
    for (std::size_t size = 0; size < table.size(); ++size) {
        EXPECT_EQ(parseAverageActivity(table.substr(0, size)), std::nullopt) << size;
    }
    EXPECT_EQ(parseAverageActivity(metricsTable(1, 3, 17, 14, 37)), std::nullopt);
}

TEST(ClientTimesOf, ADescriptorOfI915AreInNanoseconds) {
    const auto times = parseClientTimes(recordedFile("graphics/intel-light", "proc/2210/fdinfo/9"));
    ASSERT_TRUE(times);
    EXPECT_EQ(times->client, 31U);
    EXPECT_EQ(times->engines, (std::vector<EngineTime>{
                                  {.engine = "render", .busy = 25'000'000'000},
                                  {.engine = "copy"},
                                  {.engine = "video", .busy = 4'000'000'000, .capacity = 2},
                                  {.engine = "video-enhance"},
                              }));
}

TEST(ClientTimesOf, ADescriptorOfXeAreInStepsOfItsClock) {
    const auto times = parseClientTimes(recordedFile("graphics/xe", "proc/2004/fdinfo/8"));
    ASSERT_TRUE(times);
    EXPECT_EQ(times->client, 9U);
    EXPECT_EQ(times->engines,
              (std::vector<EngineTime>{
                  {.engine = "rcs", .busy = 100'000, .total = 7'655'183'225},
                  {.engine = "bcs", .busy = 0, .total = 7'655'183'225},
                  {.engine = "vcs", .busy = 50'000, .total = 7'655'183'225, .capacity = 2},
              }));
}

TEST(ClientTimesOf, EnginesWithoutATrueShareAreLeftOut) {
    const auto times = parseClientTimes(
        "drm-client-id:\t4\ndrm-cycles-gpu:\t5\ndrm-maxfreq-gpu:\t9 Hz\n"
        "drm-total-cycles-other:\t5\ndrm-engine-odd:\t5 ms\ndrm-engine-bad:\tx ns\n"
        "drm-engine-capacity-none:\t0\ndrm-engine-none:\t3 ns\n");
    ASSERT_TRUE(times);
    EXPECT_EQ(times->engines, (std::vector<EngineTime>{{.engine = "none", .busy = 3}}));
}

TEST(ClientTimesOf, AnyOtherDescriptorAreAbsent) {
    for (const std::string_view text :
         {"", "pos:\t0\nflags:\t02\n", "drm-client-id:\t\n", "drm-client-id:\t-1\n",
          "drm-client-id:\t7", "drm-client-id\n", "drm-engine-render:\t5 ns\n"}) {
        EXPECT_EQ(parseClientTimes(text), std::nullopt) << text;
    }
}

TEST(QueueTimes, AreThoseOfTheCard) {
    const auto queues =
        parseQueueTimes(recordedFile("graphics/v3d", "sys/class/drm/card1/device/gpu_stats"));
    ASSERT_EQ(queues.size(), 5U);
    EXPECT_EQ(queues[1],
              (EngineTime{.engine = "render", .busy = 27'000'000'000, .total = 239'000'000'000}));
    for (const EngineTime& queue : queues) {
        EXPECT_NE(queue.engine, "cpu");
    }
    EXPECT_TRUE(
        parseQueueTimes("queue\ttimestamp\tjobs\truntime\nbin\t1\t2\n\t\nbin 1 2 3\n").empty());
    EXPECT_TRUE(parseQueueTimes("bin\t0\t2\t3\nbin\t1\t2\t3").empty());
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
