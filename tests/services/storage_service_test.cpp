// SPDX-License-Identifier: MIT
#include "services/storage_service.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <utility>

#include "platform/testing/recording_log.h"
#include "platform/testing/scripted_volumes.h"

namespace tarnwick {
namespace {

using platform::FileSystemAttributes;
using platform::VolumeError;
using platform::VolumeResourceValues;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::int64_t kLargestCapacity = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kSmallestCapacity = std::numeric_limits<std::int64_t>::min();

class StorageServiceTest : public testing::Test {
 protected:
    StorageServiceTest() { volumes.answers.homeDirectoryForCurrentUser.set("/home/ada"); }

    StorageInfo read() { return service.readStorageInfo(); }
    StorageInfo read(const VolumeResourceValues& values) {
        volumes.answers.resourceValues.set(values);
        return read();
    }
    /// The primary source fails.
    StorageInfo readFallback(const std::optional<FileSystemAttributes>& attributes) {
        volumes.answers.resourceValues.set(VolumeError{"The volume is gone"});
        volumes.answers.attributesOfFileSystemForPath.set(attributes);
        return read();
    }

    static void expectSizes(const StorageInfo& info, std::int64_t total, std::int64_t available,
                            std::int64_t used) {
        EXPECT_EQ(info.totalSpace, total);
        EXPECT_EQ(info.availableSpace, available);
        EXPECT_EQ(info.usedSpace, used);
    }

    platform::testing::ScriptedVolumes volumes;
    platform::testing::RecordingLog log;
    StorageService service{volumes, platform::Logger(log)};
};

TEST_F(StorageServiceTest, ReportsNameAndSizesOfTheVolume) {
    const StorageInfo info =
        read({.name = "Data", .totalCapacity = 1000, .availableCapacity = 300});
    EXPECT_EQ(info.name, "Data");
    expectSizes(info, 1000, 300, 700);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(StorageServiceTest, TellsTheMountPointWhereTheSystemDoes) {
    EXPECT_EQ(read({.name = "Data", .mountPoint = "/home"}).mountPoint, "/home");
    EXPECT_EQ(read({.name = "Data"}).mountPoint, "");
}

TEST_F(StorageServiceTest, AsksForAllValuesOfTheHomeDirectoryAtOnce) {
    read({.name = "Data", .totalCapacity = 1000, .availableCapacity = 300});
    EXPECT_THAT(volumes.calls(),
                ElementsAre("homeDirectoryForCurrentUser", "resourceValues /home/ada"));
}

TEST_F(StorageServiceTest, TheHomeDirectoryIsAskedForAtEveryCall) {
    read();
    volumes.clearCalls();
    volumes.answers.homeDirectoryForCurrentUser.set("/moved");
    read();
    EXPECT_THAT(volumes.calls(), testing::Contains("resourceValues /moved"));
}

TEST_F(StorageServiceTest, AnEmptyNameReadsMacintoshHD) {
    EXPECT_EQ(read({.name = "", .totalCapacity = 10}).name, "Macintosh HD");
}

TEST_F(StorageServiceTest, AMissingNameReadsMacintoshHD) {
    EXPECT_EQ(read({.totalCapacity = 10}).name, "Macintosh HD");
}

TEST_F(StorageServiceTest, ANameIsKeptAsItIs) {
    EXPECT_EQ(read({.name = " "}).name, " ");
    EXPECT_EQ(read({.name = "Größe \xF0\x9F\x92\xBE"}).name, "Größe \xF0\x9F\x92\xBE");
}

TEST_F(StorageServiceTest, MoreAvailableThanTotalIsTheTotalAndNothingUsed) {
    expectSizes(read({.totalCapacity = 1000, .availableCapacity = 1001}), 1000, 1000, 0);
    expectSizes(read({.totalCapacity = 1000,
                      .availableCapacityForImportantUsage = kLargestCapacity,
                      .availableCapacity = 5}),
                1000, 1000, 0);
}

TEST_F(StorageServiceTest, AllAvailableLeavesNothingUsed) {
    expectSizes(read({.totalCapacity = 1000, .availableCapacity = 1000}), 1000, 1000, 0);
}

TEST_F(StorageServiceTest, CapacityForImportantUsageIsPreferred) {
    expectSizes(read({.totalCapacity = 1000,
                      .availableCapacityForImportantUsage = 400,
                      .availableCapacity = 300}),
                1000, 400, 600);
    expectSizes(read({.totalCapacity = 1000,
                      .availableCapacityForImportantUsage = 200,
                      .availableCapacity = 300}),
                1000, 200, 800);
}

TEST_F(StorageServiceTest, CapacityForImportantUsageIsPreferredEvenIfZeroOrNegative) {
    expectSizes(read({.totalCapacity = 1000,
                      .availableCapacityForImportantUsage = 0,
                      .availableCapacity = 300}),
                1000, 0, 1000);
    expectSizes(read({.totalCapacity = 1000,
                      .availableCapacityForImportantUsage = -1,
                      .availableCapacity = 300}),
                1000, 0, 1000);
}

TEST_F(StorageServiceTest, WithoutCapacityForImportantUsageThePlainOneServes) {
    expectSizes(read({.totalCapacity = 1000, .availableCapacity = 300}), 1000, 300, 700);
}

TEST_F(StorageServiceTest, WithoutAnyAvailableCapacityEverythingIsUsed) {
    expectSizes(read({.totalCapacity = 1000}), 1000, 0, 1000);
}

TEST_F(StorageServiceTest, WithoutATotalAllSizesAreZero) {
    expectSizes(read({.name = "Data", .availableCapacity = 300}), 0, 0, 0);
}

TEST_F(StorageServiceTest, ANegativeTotalIsRaisedToZero) {
    expectSizes(read({.totalCapacity = -1, .availableCapacity = 300}), 0, 0, 0);
    expectSizes(read({.totalCapacity = kSmallestCapacity, .availableCapacity = kLargestCapacity}),
                0, 0, 0);
}

TEST_F(StorageServiceTest, ANegativeAvailableCapacityIsRaisedToZero) {
    expectSizes(read({.totalCapacity = 1000, .availableCapacity = -1}), 1000, 0, 1000);
    expectSizes(read({.totalCapacity = kLargestCapacity, .availableCapacity = kSmallestCapacity}),
                kLargestCapacity, 0, kLargestCapacity);
}

TEST_F(StorageServiceTest, ValuesThatAreAllMissingAreNoFailure) {
    const StorageInfo info = read(VolumeResourceValues{});
    EXPECT_EQ(info.name, "Macintosh HD");
    expectSizes(info, 0, 0, 0);
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_THAT(volumes.calls(),
                ElementsAre("homeDirectoryForCurrentUser", "resourceValues /home/ada"));
}

TEST_F(StorageServiceTest, EachRecordHasAnIdentityOfItsOwn) {
    const VolumeResourceValues values{
        .name = "Data", .totalCapacity = 1000, .availableCapacity = 300};
    const StorageInfo first = read(values);
    const StorageInfo second = read(values);
    EXPECT_NE(first.id, second.id);
    EXPECT_NE(first.id, UUID{});
    EXPECT_EQ(first.name, second.name);
    expectSizes(second, first.totalSpace, first.availableSpace, first.usedSpace);
}

TEST_F(StorageServiceTest, EachRecordHasAnIdentityOfItsOwnWhenEverySourceFails) {
    const StorageInfo first = readFallback(std::nullopt);
    const StorageInfo second = readFallback(std::nullopt);
    EXPECT_NE(first.id, second.id);
    EXPECT_NE(first.id, UUID{});
}

TEST_F(StorageServiceTest, AFailedVolumeIsLoggedWithItsDescription) {
    readFallback(FileSystemAttributes{.size = 1000, .freeSize = 300});
    EXPECT_THAT(log.lines(),
                ElementsAre(std::pair{
                    platform::LogLevel::error,
                    std::string("Failed to get storage resource values: The volume is gone")}));
}

TEST_F(StorageServiceTest, AFailedVolumeFallsBackToTheFileSystem) {
    const StorageInfo info = readFallback(FileSystemAttributes{.size = 1000, .freeSize = 300});
    EXPECT_EQ(info.name, "Macintosh HD");
    expectSizes(info, 1000, 300, 700);
}

TEST_F(StorageServiceTest, TheFallbackAsksForTheSamePath) {
    readFallback(FileSystemAttributes{});
    EXPECT_THAT(volumes.calls(),
                ElementsAre("homeDirectoryForCurrentUser", "resourceValues /home/ada",
                            "attributesOfFileSystemForPath /home/ada"));
}

TEST_F(StorageServiceTest, TheFallbackReadsMissingSizesAsZero) {
    expectSizes(readFallback(FileSystemAttributes{.freeSize = 300}), 0, 0, 0);
    expectSizes(readFallback(FileSystemAttributes{.size = 1000}), 1000, 0, 1000);
    expectSizes(readFallback(FileSystemAttributes{}), 0, 0, 0);
}

TEST_F(StorageServiceTest, TheFallbackRaisesNegativeSizesToZero) {
    expectSizes(readFallback(FileSystemAttributes{.size = -5, .freeSize = 300}), 0, 0, 0);
    expectSizes(readFallback(FileSystemAttributes{.size = 1000, .freeSize = -5}), 1000, 0, 1000);
}

TEST_F(StorageServiceTest, TheFallbackNeverHasMoreAvailableThanTotal) {
    expectSizes(readFallback(FileSystemAttributes{.size = 1000, .freeSize = 2000}), 1000, 1000, 0);
}

TEST_F(StorageServiceTest, WithoutAnySourceTheRecordIsMacintoshHDWithoutSizes) {
    const StorageInfo info = readFallback(std::nullopt);
    EXPECT_EQ(info.name, "Macintosh HD");
    expectSizes(info, 0, 0, 0);
    EXPECT_EQ(log.lines().size(), 1U);
}

TEST_F(StorageServiceTest, AFailureLeavesNothingBehind) {
    readFallback(std::nullopt);
    const StorageInfo info =
        read({.name = "Data", .totalCapacity = 1000, .availableCapacity = 300});
    EXPECT_EQ(info.name, "Data");
    expectSizes(info, 1000, 300, 700);
}

TEST(StorageService, TheDefaultLogRecordsNothing) {
    platform::testing::ScriptedVolumes volumes;
    StorageService service(volumes);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    service.readStorageInfo();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

}  // namespace
}  // namespace tarnwick
