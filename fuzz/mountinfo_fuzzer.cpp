// SPDX-License-Identifier: MIT
// A path in the first line, followed by any text as the list of mounts: the mount that is found
// contains the path.
#include <cstdint>
#include <string>
#include <string_view>

#include "fuzz/fuzzer.h"
#include "platform/linux/volumes/mountinfo.h"
#include "platform/linux/volumes/volume_label.h"

using tarnwick::fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const std::size_t line = text.substr(0, text.find('\n')).size();
    const std::string path = "/" + std::string(text.substr(0, line));
    const auto mount = tarnwick::platform::mountOf(text.substr(line), path);
    require(!mount || (mount->mountPoint.starts_with('/') && path.starts_with(mount->mountPoint)));
    require(!mount || !tarnwick::platform::hasUserQuota(*mount) ||
            mount->options.find("quota") != std::string::npos);
    require(tarnwick::platform::decodedOctalEscapes(text).size() <= size);
    require(tarnwick::platform::decodedHexEscapes(text).size() <= size);
    return 0;
}
