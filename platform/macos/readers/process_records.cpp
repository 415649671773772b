// SPDX-License-Identifier: MIT
#include "platform/macos/readers/process_records.h"

#include "platform/macos/readers/number_at.h"

namespace tarnwick {

std::optional<ProcessRecord> decodeProcessRecord(std::span<const std::byte> bytes) {
    if (bytes.size() < kProcessRecordSize) {
        return std::nullopt;
    }
    // Leaves out the last byte of the field, which is only for the zero after the longest command.
    const auto field = bytes.subspan(kProcessCommandOffset, kProcessCommandSize - 1);
    const std::string_view command(reinterpret_cast<const char*>(field.data()), field.size());
    return ProcessRecord{
        .p_pid = numberAt<std::int32_t>(bytes, kProcessIdentifierOffset),
        .p_comm = command.substr(0, command.find('\0')),
    };
}

std::optional<platform::TaskInformation> decodeTaskInformation(std::span<const std::byte> bytes) {
    if (bytes.size() < kTaskInformationSize) {
        return std::nullopt;
    }
    return platform::TaskInformation{
        .residentSize = numberAt<std::uint64_t>(bytes, kResidentSizeOffset),
        .totalUser = numberAt<std::uint64_t>(bytes, kTotalUserOffset),
        .totalSystem = numberAt<std::uint64_t>(bytes, kTotalSystemOffset),
    };
}

}  // namespace tarnwick
