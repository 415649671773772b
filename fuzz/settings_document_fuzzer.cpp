// SPDX-License-Identifier: MIT
// The settings file, which anybody may edit.
#include <string_view>

#include "fuzz/fuzzer.h"
#include "platform/linux/settings/settings_document.h"

using tarnwick::fuzz::require;
using tarnwick::platform::SettingsDocument;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    auto document = SettingsDocument::decode(text);
    if (!document) {
        return 0;
    }
    // What is written reads as what was read, and so does what is written of that. White space may
    // make it longer than a file may be.
    const std::string written = document->encode();
    const auto again = SettingsDocument::decode(written);
    require(again ? again->readsAs(*document) : written.size() > SettingsDocument::kLimit);
    require(!again || again->encode() == written);
    require(!again || again->empty() == document->empty());

    // What is set is found and leaves the rest alone.
    constexpr std::string_view key = "settings.cpuHighThreshold";
    document->set(key, 91.5);
    require(document->value(key) == tarnwick::platform::DefaultsValue(91.5));
    require(!document->set(key, 91.5));
    const auto changed = SettingsDocument::decode(document->encode());
    require(!changed || changed->readsAs(*document));
    return 0;
}
