// SPDX-License-Identifier: MIT
#include "platform/macos/readers/kernel_records.h"

#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

namespace tarnwick {
namespace {

using testing::ElementsAre;

/// RecordBytes of a record that a test fills in place by place.
class RecordBytes {
 public:
    explicit RecordBytes(std::size_t size) : bytes_(size) {}

    template <class T>
    RecordBytes& put(std::size_t offset, T number) {
        std::memcpy(bytes_.data() + offset, &number, sizeof number);
        return *this;
    }
    std::span<const std::byte> all() const { return bytes_; }
    std::span<const std::byte> first(std::size_t size) const { return all().first(size); }
    /// The same bytes behind one more, so that no number is aligned.
    std::vector<std::byte> shifted() const {
        std::vector<std::byte> result(1);
        result.insert(result.end(), bytes_.begin(), bytes_.end());
        return result;
    }

 private:
    std::vector<std::byte> bytes_;
};

/// A `vm_statistics64`. Each 32-bit word holds 1,000 plus its own byte offset.
RecordBytes numberedVMStatistics(std::size_t size = 248) {
    RecordBytes bytes(size);
    for (std::uint32_t offset = 0; offset + 4 <= size; offset += 4) {
        bytes.put(offset, 1000 + offset);
    }
    return bytes;
}

void expectNumbered(const std::optional<platform::VMStatistics>& pages) {
    ASSERT_TRUE(pages.has_value());
    EXPECT_EQ(pages->free_count, 1000U);
    EXPECT_EQ(pages->wire_count, 1012U);
    EXPECT_EQ(pages->purgeable_count, 1088U);
    EXPECT_EQ(pages->speculative_count, 1092U);
    EXPECT_EQ(pages->compressor_page_count, 1128U);
    EXPECT_EQ(pages->external_page_count, 1136U);
    EXPECT_EQ(pages->internal_page_count, 1140U);
}

TEST(KernelRecords, NamesWhatTheSystemIsAskedFor) {
    EXPECT_EQ(kHostVMInfo64Flavour, 4);
    EXPECT_EQ(kHostVMInfo64Count, 62U);
    EXPECT_THAT(kBootTimeName, ElementsAre(1, 21));
    EXPECT_EQ(kVMStatisticsSize, 248U);
    EXPECT_EQ(kSwapUsageSize, 32U);
    EXPECT_EQ(kTimeValueSize, 16U);
}

TEST(VMStatisticsRecord, EachCountLiesAtItsOffset) {
    expectNumbered(decodeVMStatistics(numberedVMStatistics().all()));
}

TEST(VMStatisticsRecord, NeedsNoAlignment) {
    const std::vector<std::byte> bytes = numberedVMStatistics().shifted();
    expectNumbered(decodeVMStatistics(std::span(bytes).subspan(1)));
}

TEST(VMStatisticsRecord, IgnoresBytesBehindTheRecord) {
    expectNumbered(decodeVMStatistics(numberedVMStatistics(300).all()));
}

TEST(VMStatisticsRecord, EveryTruncationIsAbsent) {
    const RecordBytes bytes = numberedVMStatistics();
    for (std::size_t size = 0; size < 248; ++size) {
        EXPECT_FALSE(decodeVMStatistics(bytes.first(size)).has_value()) << size;
    }
}

TEST(VMStatisticsRecord, CountsAreUnsigned) {
    const auto pages = decodeVMStatistics(RecordBytes(248).put(0, 0xFFFFFFFFU).all());
    ASSERT_TRUE(pages.has_value());
    EXPECT_EQ(pages->free_count, 0xFFFFFFFFU);
    EXPECT_EQ(pages->wire_count, 0U);
}

RecordBytes swapUsage(std::size_t size = 32) {
    return RecordBytes(size)
        .put<std::uint64_t>(0, 0x1122334455667788)
        .put<std::uint64_t>(8, 0xFFFFFFFFFFFFFFFF)
        .put<std::uint64_t>(16, 7)
        .put<std::uint32_t>(24, 4096)
        .put<std::uint32_t>(28, 1);
}

void expectSwapUsage(const std::optional<platform::SwapUsage>& swap) {
    ASSERT_TRUE(swap.has_value());
    EXPECT_EQ(swap->total, 0x1122334455667788U);
    EXPECT_EQ(swap->available, 0xFFFFFFFFFFFFFFFFU);
    EXPECT_EQ(swap->used, 7U);
}

TEST(SwapUsageRecord, EachCountLiesAtItsOffset) {
    expectSwapUsage(decodeSwapUsage(swapUsage().all()));
}

TEST(SwapUsageRecord, NeedsNoAlignment) {
    const std::vector<std::byte> bytes = swapUsage().shifted();
    expectSwapUsage(decodeSwapUsage(std::span(bytes).subspan(1)));
}

TEST(SwapUsageRecord, IgnoresBytesBehindTheRecord) {
    expectSwapUsage(decodeSwapUsage(swapUsage(40).all()));
}

TEST(SwapUsageRecord, EveryTruncationIsAbsent) {
    const RecordBytes bytes = swapUsage();
    for (std::size_t size = 0; size < 32; ++size) {
        EXPECT_FALSE(decodeSwapUsage(bytes.first(size)).has_value()) << size;
    }
}

RecordBytes timeValue(std::size_t size = 16) {
    return RecordBytes(size)
        .put<std::int64_t>(0, 0x0123456789ABCDEF)
        .put<std::int32_t>(8, 999'999)
        .put<std::uint32_t>(12, 0xFFFFFFFF);
}

void expectTimeValue(const std::optional<platform::TimeValue>& time) {
    ASSERT_TRUE(time.has_value());
    EXPECT_EQ(time->seconds, 0x0123456789ABCDEF);
    EXPECT_EQ(time->microseconds, 999'999);
}

TEST(TimeValueRecord, TheMicrosecondsAreFollowedByPadding) {
    expectTimeValue(decodeTimeValue(timeValue().all()));
}

TEST(TimeValueRecord, NeedsNoAlignment) {
    const std::vector<std::byte> bytes = timeValue().shifted();
    expectTimeValue(decodeTimeValue(std::span(bytes).subspan(1)));
}

TEST(TimeValueRecord, IgnoresBytesBehindTheRecord) {
    expectTimeValue(decodeTimeValue(timeValue(17).all()));
}

TEST(TimeValueRecord, EveryTruncationIsAbsent) {
    const RecordBytes bytes = timeValue();
    for (std::size_t size = 0; size < 16; ++size) {
        EXPECT_FALSE(decodeTimeValue(bytes.first(size)).has_value()) << size;
    }
}

TEST(TimeValueRecord, SecondsAreSigned) {
    const auto time = decodeTimeValue(RecordBytes(16).put<std::int64_t>(0, -5).all());
    ASSERT_TRUE(time.has_value());
    EXPECT_EQ(time->seconds, -5);
}

}  // namespace
}  // namespace tarnwick
