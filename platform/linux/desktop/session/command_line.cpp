// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/session/command_line.h"

namespace tarnwick::platform {
namespace {

constexpr auto kHelp =
    "Usage: tarnwick [--toggle | --settings]\n"
    "A system monitor in the status area. Where one runs already, it is asked to open its panel.\n"
    "\n"
    "  --toggle           open its panel, or close it\n"
    "  --settings         open its settings\n"
    "  --help, --version  print this text or the version, and end\n";

}  // namespace

CommandLine parseCommandLine(int count, char* const* arguments, std::string_view version) {
    CommandLine result;
    for (int i = 1; i < count; ++i) {
        const std::string_view argument = arguments[i];
        if (argument == "--help") {
            result.text = kHelp;
        } else if (argument == "--version") {
            result.text = "tarnwick " + std::string(version) + '\n';
        } else if (argument == "--toggle") {
            result.request = Request::togglePanel;
        } else if (argument == "--settings") {
            result.request = Request::showSettings;
        }
    }
    return result;
}

}  // namespace tarnwick::platform
