// SPDX-License-Identifier: MIT
// Decodes the binary records of macOS with the process table and the resources of a process from
// plain bytes.
//
// Numbers are in the byte order of the machine; the bytes need no alignment. A decoder returns
// nothing if the bytes are too few for its record, and ignores bytes after it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "platform/process_table.h"

namespace tarnwick {

/// `sysctl` name of the whole process table: kernel, process table, all processes.
inline constexpr std::array<std::int32_t, 4> kProcessTableName{1, 14, 0, 0};
/// `proc_pidinfo` flavour that gives the task information.
inline constexpr std::int32_t kTaskInformationFlavour = 4;

/// Sizes of `kinfo_proc` and of `proc_taskinfo`, bytes.
inline constexpr std::size_t kProcessRecordSize = 648;
inline constexpr std::size_t kTaskInformationSize = 96;

/// Room for the path of an executable and the zero behind it, bytes.
inline constexpr std::size_t kExecutablePathSize = 4096;

/// Where the fields of `kp_proc` lie in `kinfo_proc`, bytes: the signed 32-bit identifier, and the
/// command as a C string in a field of its own.
inline constexpr std::size_t kProcessIdentifierOffset = 40;
inline constexpr std::size_t kProcessCommandOffset = 243;
inline constexpr std::size_t kProcessCommandSize = 17;

/// Where the unsigned 64-bit fields lie in `proc_taskinfo`, bytes.
inline constexpr std::size_t kResidentSizeOffset = 8;
inline constexpr std::size_t kTotalUserOffset = 16;
inline constexpr std::size_t kTotalSystemOffset = 24;

/// The fields of `kinfo_proc` that the program reads.
struct ProcessRecord {
    std::int32_t p_pid = 0;
    /// At most 16 characters; lies within the decoded bytes.
    std::string_view p_comm;
};

std::optional<ProcessRecord> decodeProcessRecord(std::span<const std::byte> bytes);

std::optional<platform::TaskInformation> decodeTaskInformation(std::span<const std::byte> bytes);

}  // namespace tarnwick
