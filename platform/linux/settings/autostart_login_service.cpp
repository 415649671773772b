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
#include "platform/utf8.h"

namespace tarnwick::platform {
namespace {

constexpr auto kEntry = "autostart/tarnwick.desktop";
constexpr std::string_view kHead =
    "[Desktop Entry]\nType=Application\nName=Tarnwick\nComment=System monitor for the status area\n"
    "Icon=tarnwick\n";

/// What is told to the user: one line, whatever characters the path has.
LoginServiceError failure(std::string what, const std::filesystem::path& path,
                          const std::string& why) {
    what += ' ' + path.native() + ": " + why;
    std::ranges::replace_if(
        what, [](char each) { return static_cast<unsigned char>(each) < ' '; }, '?');
    return {std::move(what)};
}

/// Absent when there is no file; what cannot be read is empty. Pipes, devices and folders are no
/// entries.
std::optional<std::string> textOf(const std::filesystem::path& file) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(file, error)) {
        return std::nullopt;
    }
    return readWholeFile(file).value_or(std::string());
}

std::string_view valueOf(std::string_view text, std::string_view key) {
    return desktopEntryValue(text, key).value_or(std::string_view());
}

/// It describes an application and nobody has switched it off: by removing it, or as several
/// desktops do.
bool isOn(std::string_view text) {
    return valueOf(text, "Type") == "Application" && valueOf(text, "Hidden") != "true" &&
           valueOf(text, "X-GNOME-Autostart-enabled") != "false";
}

/// An entry's list of desktops names one of the session's.
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

/// A word of a command line that stands for exactly these characters.
std::string commandWord(std::string_view word) {
    constexpr std::string_view reserved = " \"'\\><~|&;$*?#()`";
    std::string text = escaped(word, "\"`$\\");
    for (auto at = text.find('%'); at != std::string::npos; at = text.find('%', at + 2)) {
        text.insert(at, 1, '%');
    }
    return word.find_first_of(reserved) == std::string_view::npos ? text : '"' + text + '"';
}

/// No entry can hold the path: it is not known, the equals sign makes it a variable, and values are
/// lines of UTF-8.
bool isUnusable(const std::string& path) {
    return path.empty() || path.find('=') != std::string::npos || repairedUTF8(path) != path ||
           std::ranges::any_of(path,
                               [](char each) { return static_cast<unsigned char>(each) < ' '; });
}

/// Nobody ever sees half of a file, and a link is replaced instead of what it leads to.
std::error_code replaceFile(const std::filesystem::path& file, std::string_view text) {
    // No desktop takes a file without the suffix for an entry.
    std::string temporary = file.native() + ".XXXXXX";
    const int descriptor = ::mkostemp(temporary.data(), O_CLOEXEC);
    bool isDone = descriptor >= 0;
    if (isDone) {
        // Of a disk that takes only a part of these few bytes.
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

std::vector<std::string> startCommand(const std::filesystem::path& program,
                                      const std::function<const char*(const char*)>& environment,
                                      const std::filesystem::path& root) {
    const auto value = [&environment](const char* name) {
        const char* const text = environment(name);
        return std::string(text != nullptr ? text : "");
    };
    std::error_code error;
    const std::string flatpak = value("FLATPAK_ID");
    if (!flatpak.empty() && std::filesystem::exists(root / ".flatpak-info", error)) {
        return {"flatpak", "run", flatpak};
    }
    // The variables of an image or a snap are those of the terminal, too, that this program was
    // started from: they count only where they say where this program lies.
    const auto liesIn = [&](const char* variable) {
        const std::string folder = value(variable);
        return !folder.empty() && program.native().starts_with(folder + '/');
    };
    if (const std::string image = value("APPIMAGE"); !image.empty() && liesIn("APPDIR")) {
        return {image};
    }
    if (const std::string snap = value("SNAP_INSTANCE_NAME"); !snap.empty() && liesIn("SNAP")) {
        return {"/snap/bin/" + snap};
    }
    const auto found = findExecutable(program.filename().native(), value("PATH"));
    const bool isSame = std::filesystem::equivalent(found, program, error);
    return {isSame ? found.native() : program.native()};
}

AutostartLoginService::AutostartLoginService(std::vector<std::string> command,
                                             Environment environment)
    : command_(std::move(command)), environment_(std::move(environment)) {}

LoginServiceStatus AutostartLoginService::status() {
    std::optional<std::string> text = textOf(ownFile());
    if (!text) {
        text = systemText();
    }
    if (!text || !isOn(*text) || !isMeantFor(*text, value("XDG_CURRENT_DESKTOP"))) {
        return LoginServiceStatus::notRegistered;
    }
    const std::vector<std::string> command = desktopEntryCommand(valueOf(*text, "Exec"));
    // What started this program is there, even when a sandbox hides it.
    const bool isThere =
        !command.empty() && ((isSandboxed() && command == command_) ||
                             !findExecutable(command.front(), value("PATH")).empty());
    return isThere ? LoginServiceStatus::enabled : LoginServiceStatus::notFound;
}

std::optional<LoginServiceError> AutostartLoginService::registerService() {
    const std::string& program = command_.front();
    if (isUnusable(program)) {
        return failure("Cannot start at login", program, "no autostart entry can hold this path");
    }
    std::string line;
    for (const std::string& word : command_) {
        line += (line.empty() ? "" : " ") + commandWord(word);
    }
    return write(std::string(kHead) + "Exec=" + escaped(line, "\\") +
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
    // Below a file there is nothing to remove.
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

bool AutostartLoginService::isSandboxed() const {
    return command_.front() == "flatpak";
}

std::filesystem::path AutostartLoginService::ownFile() const {
    // In a sandbox the usual variable names a folder of the sandbox, which no desktop reads.
    const std::filesystem::path config =
        value(isSandboxed() ? "HOST_XDG_CONFIG_HOME" : "XDG_CONFIG_HOME");
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
    // What is made where the sandbox shows nothing is seen by nobody else.
    std::error_code error;
    if (isSandboxed() && !std::filesystem::is_directory(own.parent_path(), error)) {
        return failure("Cannot write", own, "the sandbox does not show this folder");
    }
    error = makeFolder(own.parent_path());
    if (!error) {
        error = replaceFile(own, text);
    }
    return error ? std::optional(failure("Cannot write", own, error.message())) : std::nullopt;
}

}  // namespace tarnwick::platform
