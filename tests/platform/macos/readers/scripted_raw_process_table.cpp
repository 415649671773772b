// SPDX-License-Identifier: MIT
#include "tests/platform/macos/readers/scripted_raw_process_table.h"

#include <algorithm>

namespace tarnwick::platform::testing {
namespace {

template <class Map, class Key>
std::optional<typename Map::mapped_type> found(const Map& map, const Key& key) {
    const auto entry = map.find(key);
    return entry == map.end() ? std::nullopt : std::optional(entry->second);
}

}  // namespace

std::optional<std::size_t> ScriptedRawProcessTable::sysctl(
    std::span<const std::int32_t> name, std::optional<std::span<std::byte>> buffer) {
    std::string call = "sysctl";
    for (const std::int32_t part : name) {
        call += " " + std::to_string(part);
    }
    if (!buffer) {
        calls_.add(call);
        return size;
    }
    calls_.add(call + ", " + std::to_string(buffer->size()));
    if (!table) {
        return std::nullopt;
    }
    const std::size_t copied = std::min(table->size(), buffer->size());
    std::copy_n(table->begin(), copied, buffer->begin());
    return written.value_or(copied);
}

std::int32_t ScriptedRawProcessTable::procPidInfo(std::int32_t identifier, std::int32_t flavour,
                                                  std::uint64_t argument,
                                                  std::span<std::byte> buffer) {
    calls_.add("procPidInfo " + std::to_string(identifier) + " " + std::to_string(flavour) + " " +
               std::to_string(argument) + " " + std::to_string(buffer.size()));
    const auto task = found(tasks, identifier);
    if (!task) {
        return 0;
    }
    std::copy_n(task->begin(), std::min(task->size(), buffer.size()), buffer.begin());
    return static_cast<std::int32_t>(task->size());
}

std::int32_t ScriptedRawProcessTable::procPidPath(std::int32_t identifier,
                                                  std::span<std::byte> buffer) {
    calls_.add("procPidPath " + std::to_string(identifier) + " " + std::to_string(buffer.size()));
    const auto path = found(paths, identifier);
    if (!path) {
        return 0;
    }
    const auto bytes = std::as_bytes(std::span(*path));
    std::copy_n(bytes.begin(), std::min(bytes.size(), buffer.size()), buffer.begin());
    return static_cast<std::int32_t>(path->size());
}

}  // namespace tarnwick::platform::testing
