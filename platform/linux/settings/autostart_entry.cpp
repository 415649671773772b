#include "platform/linux/settings/autostart_entry.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "platform/linux/applications/desktop_entry.h"
#include "platform/utf8.h"

namespace tarnwick::platform {
namespace {

constexpr std::string_view kHead =
    "[Desktop Entry]\nType=Application\nName=Tarnwick\nComment=System monitor for the status area\n"
    "Icon=tarnwick\n";

// Entries of old times say it in numbers.
bool isTrue(std::string_view value) {
    return value == "true" || value == "1";
}

bool isFalse(std::string_view value) {
    return value == "false" || value == "0";
}

std::vector<std::string> listed(std::string_view value) {
    std::vector<std::string> items;
    while (!value.empty()) {
        const std::string_view item = value.substr(0, value.find(';'));
        if (!item.empty()) {
            items.emplace_back(item);
        }
        value.remove_prefix(std::min(item.size() + 1, value.size()));
    }
    return items;
}

bool contains(const std::vector<std::string>& items, std::string_view item) {
    return std::ranges::find(items, item) != items.end();
}

/// The first word of a command line; empty when its quotes do not end or a field is to be filled
/// into it.
std::string firstWord(std::string_view line) {
    line.remove_prefix(std::min(line.find_first_not_of(" \t\n"), line.size()));
    const bool isQuoted = line.starts_with('"');
    std::string word;
    for (std::size_t i = isQuoted ? 1 : 0; i < line.size(); ++i) {
        char character = line[i];
        if (isQuoted ? character == '"' : character == ' ' || character == '\t') {
            return word;
        }
        const bool isEscape = (isQuoted && character == '\\') || character == '%';
        if (isEscape && i + 1 < line.size()) {
            ++i;
            if (character == '%' && line[i] != '%') {
                return {};
            }
            character = line[i];
        }
        word += character;
    }
    return isQuoted ? std::string() : word;
}

/// A word of a command line that stands for exactly these characters.
std::string quoted(std::string_view word) {
    constexpr std::string_view reserved = " \t\n\"'\\><~|&;$*?#()`";
    const bool isPlain = !word.empty() && word.find_first_of(reserved) == std::string_view::npos;
    std::string text;
    for (const char character : word) {
        if (character == '%') {
            text += '%';
        } else if (std::string_view("\"`$\\").find(character) != std::string_view::npos) {
            text += '\\';
        }
        text += character;
    }
    return isPlain ? text : '"' + text + '"';
}

/// A text as the value of a key.
std::string escaped(std::string_view text) {
    std::string value;
    for (std::size_t i = 0; i < text.size(); ++i) {
        switch (text[i]) {
            case '\\':
                value += "\\\\";
                break;
            case '\n':
                value += "\\n";
                break;
            case '\t':
                value += "\\t";
                break;
            case '\r':
                value += "\\r";
                break;
            case ' ':
                // At the ends it would be taken for space around the value.
                value += i == 0 || i + 1 == text.size() ? "\\s" : " ";
                break;
            default:
                value += text[i];
        }
    }
    return value;
}

}  // namespace

std::optional<AutostartEntry> parseAutostartEntry(std::string_view text) {
    const auto value = [text](std::string_view key) {
        return desktopEntryValue(text, key).value_or(std::string_view());
    };
    if (value("Type") != "Application") {
        return std::nullopt;
    }
    AutostartEntry entry;
    entry.isOff = isTrue(value("Hidden"));
    entry.isOffForSome = isFalse(value("X-GNOME-Autostart-enabled"));
    constexpr std::array conditions = {"AutostartCondition", "X-KDE-autostart-condition",
                                       "X-GNOME-Autostart-Phase"};
    entry.isConditional = std::ranges::any_of(
        conditions, [&value](std::string_view key) { return !value(key).empty(); });
    entry.isConditional = entry.isConditional || isTrue(value("X-systemd-skip"));
    if (const auto only = desktopEntryValue(text, "OnlyShowIn")) {
        entry.onlyShowIn = listed(*only);
    }
    entry.notShowIn = listed(value("NotShowIn"));
    entry.tryExec = desktopEntryText(value("TryExec"));
    entry.program = firstWord(desktopEntryText(value("Exec")));
    return entry;
}

bool isMeantFor(const AutostartEntry& entry, std::string_view current) {
    while (!current.empty()) {
        const std::string_view desktop = current.substr(0, current.find(':'));
        if (entry.onlyShowIn && contains(*entry.onlyShowIn, desktop)) {
            return true;
        }
        if (contains(entry.notShowIn, desktop)) {
            return false;
        }
        current.remove_prefix(std::min(desktop.size() + 1, current.size()));
    }
    return !entry.onlyShowIn;
}

bool isOffFor(const AutostartEntry& entry, std::string_view current) {
    // Those whose session manager reads the key.
    constexpr std::array<std::string_view, 8> readers = {
        "GNOME",  "GNOME-Flashback", "GNOME-Classic", "Unity",
        "Budgie", "Pantheon",        "X-Cinnamon",    "MATE"};
    bool isRead = false;
    while (!current.empty()) {
        const std::string_view desktop = current.substr(0, current.find(':'));
        isRead = isRead || std::ranges::find(readers, desktop) != readers.end();
        current.remove_prefix(std::min(desktop.size() + 1, current.size()));
    }
    return entry.isOff || (entry.isOffForSome && isRead);
}

std::optional<std::string> autostartEntryText(std::span<const std::string> command) {
    if (command.empty() || command.front().find('=') != std::string::npos ||
        repairedUTF8(command.front()) != command.front()) {
        return std::nullopt;
    }
    std::string line;
    for (const std::string& word : command) {
        line += line.empty() ? "" : " ";
        line += quoted(word);
    }
    std::string text(kHead);
    text += "Exec=" + escaped(line) + "\nTryExec=" + escaped(command.front()) +
            "\nTerminal=false\nStartupNotify=false\nX-GNOME-Autostart-enabled=true\n";
    return text;
}

std::string switchedOffEntryText() {
    return std::string(kHead) + "Hidden=true\n";
}

}  // namespace tarnwick::platform
