// SPDX-License-Identifier: MIT
#include "platform/linux/applications/desktop_entry.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "platform/linux/files/list_items.h"
#include "platform/utf8.h"

namespace tarnwick::platform {

namespace {

// Characters of a name; no panel has room for as many.
constexpr std::size_t kLongestName = 256;

std::string_view withoutSpaces(std::string_view text) {
    // A line of another system ends with a carriage return, too.
    constexpr std::string_view spaces = " \t\r";
    text.remove_prefix(std::min(text.find_first_not_of(spaces), text.size()));
    return text.substr(0, text.find_last_not_of(spaces) + 1);
}

// Calls `visit` with each key of the main group and its value, without spaces around them.
template <class Visit>
void visitKeys(std::string_view text, Visit visit) {
    bool isInGroup = false;
    for (std::string_view line : listItems(text, '\n')) {
        line = withoutSpaces(line);
        const std::size_t equals = line.find('=');
        if (line.starts_with('[')) {
            if (isInGroup) {
                break;
            }
            isInGroup = line == "[Desktop Entry]";
        } else if (isInGroup && !line.starts_with('#') && equals != std::string_view::npos) {
            visit(withoutSpaces(line.substr(0, equals)), withoutSpaces(line.substr(equals + 1)));
        }
    }
}

// Rank of the name under this key; the smallest is the best, and one more than there are suffixes
// is that of any other key.
std::size_t rankOfName(std::string_view key, std::span<const std::string> suffixes) {
    if (key == "Name") {
        return suffixes.size();
    }
    if (key.starts_with("Name[") && key.ends_with(']')) {
        const auto found = std::ranges::find(suffixes, key.substr(5, key.size() - 6));
        if (found != suffixes.end()) {
            return static_cast<std::size_t>(found - suffixes.begin());
        }
    }
    return suffixes.size() + 1;
}

// Adds the suffixes of one locale, such as "de_AT.UTF-8@euro".
void addSuffixes(std::string_view locale, std::vector<std::string>& suffixes) {
    const std::size_t at = std::min(locale.find('@'), locale.size());
    const std::string modifier(locale.substr(at));
    locale = locale.substr(0, at);
    const std::string place(locale.substr(0, locale.find('.')));
    const std::string language = place.substr(0, place.find('_'));
    if (language.empty() || language == "C" || language == "POSIX") {
        return;
    }
    for (const std::string& suffix : {place + modifier, place, language + modifier, language}) {
        if (std::ranges::find(suffixes, suffix) == suffixes.end()) {
            suffixes.push_back(suffix);
        }
    }
}

}  // namespace

std::optional<std::string_view> desktopEntryValue(std::string_view text, std::string_view key) {
    std::optional<std::string_view> found;
    visitKeys(text, [&](std::string_view each, std::string_view value) {
        if (each == key) {
            found = value;
        }
    });
    return found;
}

std::string desktopEntryText(std::string_view value) {
    std::string text;
    while (!value.empty()) {
        char character = value.front();
        value.remove_prefix(1);
        if (character == '\\' && !value.empty()) {
            constexpr std::string_view letters = "sntr";
            constexpr std::string_view meanings = " \n\t\r";
            const std::size_t found = letters.find(value.front());
            character = found == std::string_view::npos ? value.front() : meanings[found];
            value.remove_prefix(1);
        }
        text += character;
    }
    return text;
}

std::vector<std::string> desktopEntryCommand(std::string_view exec) {
    const std::string line = desktopEntryText(exec);
    std::vector<std::string> words;
    std::string word;
    // A pair of quotes makes a word, also an empty one.
    bool hasQuotes = false;
    char quote = '\0';
    const auto endWord = [&] {
        if (hasQuotes || !word.empty()) {
            words.push_back(std::exchange(word, {}));
        }
        hasQuotes = false;
    };
    for (std::size_t i = 0; i < line.size(); ++i) {
        const char character = line[i];
        const bool hasNext = i + 1 < line.size();
        if (quote == '\0' && std::string_view(" \t\n").find(character) != std::string_view::npos) {
            endWord();
        } else if (character == quote) {
            quote = '\0';
        } else if (quote == '\0' && (character == '"' || character == '\'')) {
            quote = character;
            hasQuotes = true;
        } else if (character == '\\' && quote != '\'' && hasNext) {
            word += line[++i];
        } else if (character == '%' && quote != '\'' && hasNext) {
            word += line[++i] == '%' ? "%" : "";
        } else {
            word += character;
        }
    }
    endWord();
    return quote == '\0' ? words : std::vector<std::string>();
}

std::vector<std::string> localeSuffixes(
    const std::function<const char*(const char*)>& environment) {
    const auto value = [&environment](const char* name) {
        const char* const text = environment(name);
        return std::string_view(text != nullptr ? text : "");
    };
    std::string_view locale;
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        locale = value(name);
        if (!locale.empty()) {
            break;
        }
    }
    std::vector<std::string> ofLocale;
    addSuffixes(locale, ofLocale);
    if (ofLocale.empty()) {
        return {};
    }
    // The list of languages is used only if the locale names a language.
    std::vector<std::string> suffixes;
    for (const std::string_view language : listItems(value("LANGUAGE"))) {
        addSuffixes(language, suffixes);
    }
    addSuffixes(locale, suffixes);
    return suffixes;
}

std::optional<DesktopEntry> parseDesktopEntry(std::string_view text,
                                              std::span<const std::string> suffixes) {
    DesktopEntry entry;
    std::size_t rank = suffixes.size() + 1;
    bool isApplication = true;
    visitKeys(text, [&](std::string_view key, std::string_view value) {
        if ((key == "Type" && value != "Application") || (key == "Hidden" && value == "true")) {
            isApplication = false;
        } else if (key == "NoDisplay") {
            entry.isShown = value != "true";
        } else if (const std::size_t found = rankOfName(key, suffixes);
                   found < rank && !value.empty()) {
            rank = found;
            entry.name = firstCharacters(repairedUTF8(desktopEntryText(value)), kLongestName);
        }
    });
    if (!isApplication || entry.name.empty()) {
        return std::nullopt;
    }
    return entry;
}

}  // namespace tarnwick::platform
