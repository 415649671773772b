// The processes that /proc lists.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick::platform {

/// The process identifier that is written as `name` in /proc; 0 for any other name.
std::int32_t parseProcessIdentifier(std::string_view name);

/// Fills `identifiers` with those of the processes in a folder like /proc, rising. False, with
/// `identifiers` empty, when it cannot be read.
bool listProcessIdentifiers(const std::string& folder, std::vector<std::int32_t>& identifiers);

}  // namespace tarnwick::platform
