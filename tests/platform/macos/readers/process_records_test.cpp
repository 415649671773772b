// SPDX-License-Identifier: MIT
#include "platform/macos/readers/process_records.h"

#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

namespace tarnwick {
namespace {

template <class T>
void put(std::vector<std::byte>& bytes, std::size_t offset, T number) {
    std::memcpy(bytes.data() + offset, &number, sizeof number);
}

void putText(std::vector<std::byte>& bytes, std::size_t offset, const std::string& text) {
    std::memcpy(bytes.data() + offset, text.data(), text.size());
}

TEST(ProcessRecord, HasTheIdentifierAtByte40AndTheCommandAtByte243) {
    std::vector<std::byte> bytes(648);
    put<std::int32_t>(bytes, 40, 4711);
    putText(bytes, 243, "Finder");
    const auto record = decodeProcessRecord(bytes);
    ASSERT_TRUE(record);
    EXPECT_EQ(record->p_pid, 4711);
    EXPECT_EQ(record->p_comm, "Finder");
}

TEST(ProcessRecord, OfOnlyZeroBytesIsProcessZeroWithoutACommand) {
    const std::vector<std::byte> bytes(648);
    const auto record = decodeProcessRecord(bytes);
    ASSERT_TRUE(record);
    EXPECT_EQ(record->p_pid, 0);
    EXPECT_EQ(record->p_comm, "");
}

TEST(ProcessRecord, TheIdentifierIsSigned) {
    std::vector<std::byte> bytes(648);
    put<std::int32_t>(bytes, 40, -2);
    EXPECT_EQ(decodeProcessRecord(bytes)->p_pid, -2);
    put<std::int32_t>(bytes, 40, std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(decodeProcessRecord(bytes)->p_pid, std::numeric_limits<std::int32_t>::max());
}

TEST(ProcessRecord, ACommandHasAtMost16Characters) {
    std::vector<std::byte> bytes(648, std::byte{'x'});
    EXPECT_EQ(decodeProcessRecord(bytes)->p_comm, std::string(16, 'x'));
    putText(bytes, 243, std::string("0123456789abcdef") + '\0');
    EXPECT_EQ(decodeProcessRecord(bytes)->p_comm, "0123456789abcdef");
    putText(bytes, 243, std::string("ab c\0def", 8));
    EXPECT_EQ(decodeProcessRecord(bytes)->p_comm, "ab c");
}

TEST(ProcessRecord, IsAbsentAtEveryTruncation) {
    const std::vector<std::byte> bytes(648, std::byte{1});
    for (std::size_t size = 0; size < 648; ++size) {
        EXPECT_FALSE(decodeProcessRecord(std::span(bytes).first(size))) << size;
    }
    EXPECT_TRUE(decodeProcessRecord(bytes));
}

TEST(ProcessRecord, IgnoresBytesBehindIt) {
    std::vector<std::byte> bytes(700, std::byte{1});
    put<std::int32_t>(bytes, 40, 9);
    EXPECT_EQ(decodeProcessRecord(bytes)->p_pid, 9);
}

TEST(ProcessRecord, NeedsNoAlignment) {
    std::vector<std::byte> bytes(649);
    put<std::int32_t>(bytes, 41, 12);
    EXPECT_EQ(decodeProcessRecord(std::span(bytes).subspan(1))->p_pid, 12);
}

TEST(TaskInformation, HasItsFieldsAtBytes8And16And24) {
    std::vector<std::byte> bytes(96);
    put<std::uint64_t>(bytes, 0, 1);
    put<std::uint64_t>(bytes, 8, 0x1234567890);
    put<std::uint64_t>(bytes, 16, std::numeric_limits<std::uint64_t>::max());
    put<std::uint64_t>(bytes, 24, 77);
    put<std::uint64_t>(bytes, 32, 5);
    const auto task = decodeTaskInformation(bytes);
    ASSERT_TRUE(task);
    EXPECT_EQ(task->residentSize, 0x1234567890U);
    EXPECT_EQ(task->totalUser, std::numeric_limits<std::uint64_t>::max());
    EXPECT_EQ(task->totalSystem, 77U);
}

TEST(TaskInformation, IsAbsentAtEveryTruncation) {
    const std::vector<std::byte> bytes(96, std::byte{1});
    for (std::size_t size = 0; size < 96; ++size) {
        EXPECT_FALSE(decodeTaskInformation(std::span(bytes).first(size))) << size;
    }
    EXPECT_TRUE(decodeTaskInformation(bytes));
}

TEST(TaskInformation, NeedsNoAlignment) {
    std::vector<std::byte> bytes(97);
    put<std::uint64_t>(bytes, 9, 4096);
    EXPECT_EQ(decodeTaskInformation(std::span(bytes).subspan(1))->residentSize, 4096U);
}

}  // namespace
}  // namespace tarnwick
