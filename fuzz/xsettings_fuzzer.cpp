// SPDX-License-Identifier: MIT
// The settings property of an X11 display, which any client may write, and the font named in it.
#include <span>

#include "fuzz/fuzzer.h"
#include "platform/linux/desktop/session/xsettings.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace tarnwick;
    const auto text = platform::xsettingsText(std::as_bytes(std::span(data, size)), "Gtk/FontName");
    if (text) {
        fuzz::require(text->size() < size);
        if (const auto font = platform::interfaceFont(*text)) {
            fuzz::require(!font->family.empty() && font->pointSize >= 4 && font->pointSize <= 72);
        }
    }
    return 0;
}
