// SPDX-License-Identifier: MIT
// Any text as a style sheet of waybar.
#include <cstdint>
#include <string_view>

#include "fuzz/fuzzer.h"
#include "platform/linux/desktop/tray/waybar_style.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using tarnwick::platform::wantsLightText;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const auto isLight = wantsLightText(text);
    tarnwick::fuzz::require(wantsLightText(text) == isLight);
    return 0;
}
