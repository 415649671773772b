// SPDX-License-Identifier: MIT
// The macOS calls that deliver the process table and related data as plain bytes. A portable reader
// makes a process table from these bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "platform/process_table.h"

namespace tarnwick::platform {

/// Any thread.
class RawProcessTable : public ProcessFacts {
 public:
    /// `sysctl`. Without a buffer: the size of the value in bytes. With one: the bytes written into
    /// it. Absent on failure, also when the value has outgrown the buffer.
    virtual std::optional<std::size_t> sysctl(std::span<const std::int32_t> name,
                                              std::optional<std::span<std::byte>> buffer) = 0;
    /// `proc_pidinfo`: the bytes written into the buffer; below 1 on failure.
    virtual std::int32_t procPidInfo(std::int32_t identifier, std::int32_t flavour,
                                     std::uint64_t argument, std::span<std::byte> buffer) = 0;
    /// `proc_pidpath`: the length of the path written into the buffer; below 1 on failure.
    virtual std::int32_t procPidPath(std::int32_t identifier, std::span<std::byte> buffer) = 0;
};

}  // namespace tarnwick::platform
