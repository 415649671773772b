#include "platform/linux/applications/terminal_command.h"

#include <array>

#include "platform/linux/applications/executable_file.h"

namespace tarnwick::platform {
namespace {

struct Terminal {
    std::string_view program;
    /// What stands between the program and the command; empty where the command follows at once.
    std::string_view option;
};

constexpr std::array kTerminals = {Terminal{"xdg-terminal-exec", ""},
                                   Terminal{"x-terminal-emulator", "-e"},
                                   Terminal{"gnome-terminal", "--"},
                                   Terminal{"kgx", "--"},
                                   Terminal{"ptyxis", "--"},
                                   Terminal{"konsole", "-e"},
                                   Terminal{"xfce4-terminal", "-x"},
                                   Terminal{"mate-terminal", "-x"},
                                   Terminal{"qterminal", "-e"},
                                   Terminal{"foot", ""},
                                   Terminal{"alacritty", "-e"},
                                   Terminal{"kitty", ""},
                                   Terminal{"xterm", "-e"}};

}  // namespace

std::vector<std::string> terminalCommand(const std::vector<std::string>& command,
                                         std::string_view list, const std::filesystem::path& root) {
    for (const Terminal& terminal : kTerminals) {
        if (findExecutable(terminal.program, list, root).empty()) {
            continue;
        }
        std::vector<std::string> whole{std::string(terminal.program)};
        if (!terminal.option.empty()) {
            whole.emplace_back(terminal.option);
        }
        whole.insert(whole.end(), command.begin(), command.end());
        return whole;
    }
    return {};
}

}  // namespace tarnwick::platform
