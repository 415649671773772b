// SPDX-License-Identifier: MIT
// Any text as the value of a desktop entry and as its command line, which an autostart entry has,
// too.
#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

#include "fuzz/fuzzer.h"
#include "platform/linux/applications/desktop_entry.h"
#include "platform/linux/files/list_items.h"

using tarnwick::fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace tarnwick::platform;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    require(desktopEntryText(text).size() <= size);

    std::size_t length = 0;
    for (const std::string& word : desktopEntryCommand(text)) {
        length += word.size();
    }
    require(length <= size);

    // What has no special character is divided at its spaces.
    if (text.find_first_of(std::string_view("\\\"'%\t\n\0", 7)) == std::string_view::npos) {
        const auto words = desktopEntryCommand(text);
        const auto items = listItems(text, ' ');
        require(std::equal(words.begin(), words.end(), items.begin(), items.end()));
    }

    if (const auto value = desktopEntryValue(text, "Exec")) {
        require(text.find(*value) != std::string_view::npos);
        require(value->find('\n') == std::string_view::npos);
    }
    return 0;
}
