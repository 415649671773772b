// SPDX-License-Identifier: MIT
// Any bytes as a name: what is shown of it stays on its line and in its direction.
#include <cstdint>
#include <string>
#include <string_view>

#include "fuzz/fuzzer.h"
#include "platform/utf8.h"

using tarnwick::fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace tarnwick::platform;
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const std::string name = repairedName(bytes);
    require(name.size() <= 3 * size);
    require(repairedUTF8(name) == name && repairedName(name) == name);
    for (const char each : name) {
        require(static_cast<unsigned char>(each) >= ' ' && each != '\x7F');
    }
    for (const char* const mark : {"\u061C", "\u200E", "\u202E", "\u2028", "\u2067", "\u0085"}) {
        require(name.find(mark) == std::string::npos);
    }
    // Nothing that can be seen is lost, and nothing is made up.
    require(canBeSeen(name) == canBeSeen(repairedUTF8(bytes)));

    const std::string_view start = firstCharacters(name, size / 2);
    require(name.starts_with(start) && repairedUTF8(start) == start);
    require(firstCharacters(name, size) == name);
    return 0;
}
