// SPDX-License-Identifier: MIT
#include "platform/linux/settings/autostart_login_service.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "platform/linux/applications/desktop_entry.h"
#include "platform/linux/applications/executable_file.h"
#include "platform/linux/files/folders.h"
#include "platform/linux/files/kept_file.h"
#include "platform/linux/files/list_items.h"
#include "platform/linux/identifier.h"
#include "platform/utf8.h"

namespace tarnwick::platform {
namespace {

const std::string kEntry = std::string("autostart/") + kIdentifier + ".desktop";
const std::string kHead = std::string(
                              "[Desktop Entry]\nType=Application\nName=Tarnwick\n"
                              "Comment=System monitor for the status area\nIcon=") +
                          kIdentifier + '\n';

/// The message for the user: one line, even if the path contains control characters.
LoginServiceError failure(std::string what, const std::filesystem::path& path,
                          const std::string& why) {
    what += ' ' + path.native() + ": " + why;
    std::ranges::replace_if(
        what, [](char each) { return static_cast<unsigned char>(each) < ' '; }, '?');
    return {std::move(what)};
}

/// Absent if there is no file: pipes and folders are not entries. Empty if the file cannot be read.
/// A link to /dev/null is an empty file, with which people hide the entries of other folders.
std::optional<std::string> textOf(const std::filesystem::path& file) {
    std::error_code error;
    if (std::filesystem::is_character_file(file, error)) {
        return "";
    }
    if (!std::filesystem::is_regular_file(file, error)) {
        return std::nullopt;
    }
    return readWholeFile(file).value_or(std::string());
}

std::string_view valueOf(std::string_view text, std::string_view key) {
    return desktopEntryValue(text, key).value_or(std::string_view());
}

/// Whether the entry describes an application and is not switched off, either with Hidden or in the
/// way of several desktops.
bool isOn(std::string_view text) {
    return valueOf(text, "Type") == "Application" && valueOf(text, "Hidden") != "true" &&
           valueOf(text, "X-GNOME-Autostart-enabled") != "false";
}

/// Whether an entry's list of desktops contains one of the session's.
bool names(std::string_view list, std::string_view current) {
    const auto named = listItems(list, ';');
    return std::ranges::any_of(listItems(current), [&named](std::string_view desktop) {
        return std::ranges::count(named, desktop) > 0;
    });
}

bool isMeantFor(std::string_view text, std::string_view current) {
    const auto only = desktopEntryValue(text, "OnlyShowIn");
    return (!only || names(*only, current)) && !names(valueOf(text, "NotShowIn"), current);
}

std::string escaped(std::string_view text, std::string_view reserved) {
    std::string result;
    for (const char character : text) {
        if (reserved.find(character) != std::string_view::npos) {
            result += '\\';
        }
        result += character;
    }
    return result;
}

/// Quotes a word so that a command line reads exactly these characters.
std::string commandWord(std::string_view word) {
    constexpr std::string_view reserved = " \"'\\><~|&;$*?#()`";
    std::string text = escaped(word, "\"`$\\");
    for (auto at = text.find('%'); at != std::string::npos; at = text.find('%', at + 2)) {
        text.insert(at, 1, '%');
    }
    return word.find_first_of(reserved) == std::string_view::npos ? text : '"' + text + '"';
}

/// Whether no entry can hold the path: it is unknown, contains an equals sign (which makes it a
/// variable), or is not one line of UTF-8.
bool isUnusable(const std::string& path) {
    return path.empty() || path.find('=') != std::string::npos || repairedUTF8(path) != path ||
           std::ranges::any_of(path,
                               [](char each) { return static_cast<unsigned char>(each) < ' '; });
}

/// Replaces the file at once, so that no program ever reads half of it. If the file is a link, the
/// link is replaced, not its target.
std::error_code replaceFile(const std::filesystem::path& file, std::string_view text) {
    // Desktops ignore a file without the suffix ".desktop".
    std::string temporary = file.native() + ".XXXXXX";
    const int descriptor = ::mkostemp(temporary.data(), O_CLOEXEC);
    bool isDone = descriptor >= 0;
    if (isDone) {
        // The error if the disk takes only a part of these few bytes.
        errno = ENOSPC;
        isDone = ::write(descriptor, text.data(), text.size()) == std::ssize(text) &&
                 ::fsync(descriptor) == 0 && ::rename(temporary.c_str(), file.c_str()) == 0;
    }
    const std::error_code error(isDone ? 0 : errno, std::generic_category());
    if (descriptor >= 0) {
        ::close(descriptor);
    }
    if (descriptor >= 0 && error) {
        ::unlink(temporary.c_str());
    }
    makeLasting(file.parent_path());
    return error;
}

}  // namespace

std::filesystem::path startedAtLogin(const std::filesystem::path& program,
                                     const std::function<const char*(const char*)>& environment) {
    const auto value = [&environment](const char* name) {
        const char* const text = environment(name);
        return std::string(text != nullptr ? text : "");
    };
    // The variables of an image may come from the terminal that started this program. They count
    // only if this program lies in the folder that they name.
    const std::string image = value("APPIMAGE");
    const std::string mounted = value("APPDIR");
    if (!image.empty() && !mounted.empty() && program.native().starts_with(mounted + '/')) {
        return image;
    }
    std::error_code error;
    const auto found = findExecutable(program.filename().native(), value("PATH"));
    return std::filesystem::equivalent(found, program, error) ? found : program;
}

AutostartLoginService::AutostartLoginService(std::filesystem::path program, Environment environment)
    : program_(std::move(program)), environment_(std::move(environment)) {}

LoginServiceStatus AutostartLoginService::status() {
    std::optional<std::string> text = textOf(ownFile());
    if (!text) {
        text = systemText();
    }
    if (!text || !isOn(*text) || !isMeantFor(*text, value("XDG_CURRENT_DESKTOP"))) {
        return LoginServiceStatus::notRegistered;
    }
    const std::vector<std::string> command = desktopEntryCommand(valueOf(*text, "Exec"));
    const bool isThere =
        !command.empty() && !findExecutable(command.front(), value("PATH")).empty();
    return isThere ? LoginServiceStatus::enabled : LoginServiceStatus::notFound;
}

std::optional<LoginServiceError> AutostartLoginService::registerService() {
    const std::string program = startedAtLogin(program_, environment_).native();
    if (isUnusable(program)) {
        return failure("Cannot start at login", program, "no autostart entry can hold this path");
    }
    return write(std::string(kHead) + "Exec=" + escaped(commandWord(program), "\\") +
                 "\nTryExec=" + escaped(program, "\\") +
                 "\nTerminal=false\nStartupNotify=false\nX-GNOME-Autostart-enabled=true\n");
}

std::optional<LoginServiceError> AutostartLoginService::unregisterService() {
    if (const auto text = systemText(); text && valueOf(*text, "Hidden") != "true") {
        return write(std::string(kHead) + "Hidden=true\n");
    }
    const std::filesystem::path own = ownFile();
    std::error_code error;
    std::filesystem::remove(own, error);
    // If a parent of the path is a file, there is nothing to remove.
    if (error && error != std::errc::not_a_directory) {
        return failure("Cannot remove", own, error.message());
    }
    makeLasting(own.parent_path());
    return std::nullopt;
}

std::string AutostartLoginService::value(const char* name) const {
    const char* const text = environment_(name);
    return text != nullptr ? text : "";
}

std::filesystem::path AutostartLoginService::ownFile() const {
    const std::filesystem::path config = value("XDG_CONFIG_HOME");
    if (config.is_absolute()) {
        return config / kEntry;
    }
    const std::filesystem::path home = value("HOME");
    return home.is_absolute() ? home / ".config" / kEntry : std::filesystem::path();
}

std::optional<std::string> AutostartLoginService::systemText() const {
    std::string list = value("XDG_CONFIG_DIRS");
    if (list.empty()) {
        list = "/etc/xdg";
    }
    for (const std::filesystem::path folder : listItems(list)) {
        if (auto text = folder.is_absolute() ? textOf(folder / kEntry) : std::nullopt) {
            return text;
        }
    }
    return std::nullopt;
}

std::optional<LoginServiceError> AutostartLoginService::write(std::string_view text) const {
    const std::filesystem::path own = ownFile();
    if (own.empty()) {
        return LoginServiceError{"Cannot change what starts at login: there is no home folder"};
    }
    std::error_code error = makeFolder(own.parent_path());
    if (!error) {
        error = replaceFile(own, text);
    }
    return error ? std::optional(failure("Cannot write", own, error.message())) : std::nullopt;
}

}  // namespace tarnwick::platform
