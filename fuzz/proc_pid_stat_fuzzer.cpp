// SPDX-License-Identifier: MIT
// Any text as the stat file of a process: the command lies between the first "(" and the last ")".
// Any text as a command: the parser finds it again, and the fields behind it.
// Any text as a name in the list of processes.
#include <cstdint>
#include <string>
#include <string_view>

#include "fuzz/fuzzer.h"
#include "platform/linux/processes/proc_pid_stat.h"
#include "platform/utf8.h"

using tarnwick::fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    if (const auto stat = tarnwick::platform::parseProcessStat(text)) {
        const std::size_t start = text.find('(') + 1;
        require(stat->command == text.substr(start, text.rfind(')') - start));
    }

    // Here the text is the command.
    const std::string line =
        "7 (" + std::string(text) + ") R 1 1 1 0 -1 0 0 0 0 0 12 34 0 0 20 0 1 0 5 1000 56 0 0\n";
    const auto stat = tarnwick::platform::parseProcessStat(line);
    require(stat && stat->command == text && stat->userTicks == 12 && stat->systemTicks == 34 &&
            stat->residentPages == 56);

    const std::string repaired = tarnwick::platform::repairedUTF8(text);
    require(tarnwick::platform::repairedUTF8(repaired) == repaired);

    const std::int32_t identifier = tarnwick::platform::parseProcessIdentifier(text);
    require(identifier == 0 || std::to_string(identifier) == text);
    return 0;
}
