// SPDX-License-Identifier: MIT
// Any bytes as a process table and as the task information of each process in it: the decoded
// values are those in the bytes, and the reader visits exactly the complete records.
//
// The first two bytes of an input are the size that the system reports. The rest is the table. The
// first byte of a record says how many bytes of that record the system returns as the task
// information of its process.
#include <algorithm>
#include <cstring>
#include <span>
#include <string_view>
#include <vector>

#include "fuzz/fuzzer.h"
#include "platform/macos/readers/process_records.h"
#include "platform/macos/readers/process_table_reader.h"
#include "tests/platform/macos/readers/scripted_raw_process_table.h"

namespace {

using tarnwick::fuzz::require;

template <class T>
bool liesAt(std::span<const std::byte> bytes, std::size_t offset, T number) {
    return std::memcmp(bytes.data() + offset, &number, sizeof number) == 0;
}

void checkProcessRecord(std::span<const std::byte> bytes) {
    const auto record = tarnwick::decodeProcessRecord(bytes);
    require(record.has_value() == (bytes.size() >= 648));
    if (record) {
        require(liesAt(bytes, 40, record->p_pid));
        require(record->p_comm.size() <= 16);
        require(record->p_comm.find('\0') == std::string_view::npos);
        require(std::memcmp(bytes.data() + 243, record->p_comm.data(), record->p_comm.size()) == 0);
        require(record->p_comm.size() == 16 || bytes[243 + record->p_comm.size()] == std::byte{0});
    }
}

void checkTaskInformation(std::span<const std::byte> bytes) {
    const auto task = tarnwick::decodeTaskInformation(bytes);
    require(task.has_value() == (bytes.size() >= 96));
    if (task) {
        require(liesAt(bytes, 8, task->residentSize));
        require(liesAt(bytes, 16, task->totalUser));
        require(liesAt(bytes, 24, task->totalSystem));
    }
}

void checkReader(std::span<const std::byte> bytes) {
    if (bytes.size() < 2) {
        return;
    }
    std::uint16_t size = 0;
    std::memcpy(&size, bytes.data(), sizeof size);
    tarnwick::platform::testing::ScriptedRawProcessTable raw;
    raw.size = size;
    raw.table = std::vector(bytes.begin() + 2, bytes.end());
    tarnwick::ProcessTableReader reader(raw);
    std::span<const std::byte> rest = bytes.subspan(2);
    std::size_t visited = 0;
    reader.forEachProcess([&](tarnwick::platform::ProcessEntry& process) {
        require(liesAt(rest, 40, process.identifier()));
        require(process.command().size() <= 16);
        const auto given = rest.first(std::to_integer<std::size_t>(rest[0]));
        raw.tasks = {{process.identifier(), {given.begin(), given.end()}}};
        const auto task = process.taskInformation();
        require(task.has_value() == (given.size() == 96));
        require(!task || liesAt(given, 8, task->residentSize));
        rest = rest.subspan(648);
        ++visited;
    });
    require(visited == std::min(*raw.size, bytes.size() - 2) / 648);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::span<const std::byte> bytes = std::as_bytes(std::span(data, size));
    checkProcessRecord(bytes);
    checkTaskInformation(bytes);
    checkReader(bytes);
    return 0;
}
