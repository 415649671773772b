#include "platform/linux/settings/autostart_login_service.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "platform/linux/applications/executable_file.h"
#include "platform/linux/files/folders.h"
#include "platform/linux/files/kept_file.h"

namespace tarnwick::platform {
namespace {

constexpr auto kEntry = "autostart/tarnwick.desktop";

std::error_code lastError() {
    return {errno, std::generic_category()};
}

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
    struct stat found {};
    if (::stat(file.c_str(), &found) != 0 || !S_ISREG(found.st_mode)) {
        return std::nullopt;
    }
    return readWholeFile(file).value_or(std::string());
}

/// Writes the whole text to the disk.
std::error_code fill(int file, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = ::write(file, text.data(), text.size());
        if (written < 0 && errno != EINTR) {
            return lastError();
        }
        text.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(written, 0)));
    }
    return ::fsync(file) == 0 ? std::error_code() : lastError();
}

/// Nobody ever sees half of a file, and a link is replaced instead of what it leads to.
std::error_code replaceFile(const std::filesystem::path& file, std::string_view text) {
    // No desktop takes a file without the suffix for an entry.
    std::string temporary = file.native() + ".XXXXXX";
    const int descriptor = ::mkostemp(temporary.data(), O_CLOEXEC);
    if (descriptor < 0) {
        return lastError();
    }
    std::error_code error = fill(descriptor, text);
    if (::close(descriptor) != 0 && !error) {
        error = lastError();
    }
    if (!error && ::rename(temporary.c_str(), file.c_str()) != 0) {
        error = lastError();
    }
    if (error) {
        ::unlink(temporary.c_str());
        return error;
    }
    makeLasting(file.parent_path());
    return {};
}

}  // namespace

AutostartLoginService::AutostartLoginService(std::vector<std::string> command,
                                             Environment environment)
    : command_(std::move(command)), environment_(std::move(environment)) {}

LoginServiceStatus AutostartLoginService::status() {
    std::optional<std::string> text;
    if (const std::filesystem::path own = ownFile(); !own.empty()) {
        text = textOf(own);
    }
    if (!text) {
        text = systemText();
    }
    const auto entry = text ? parseAutostartEntry(*text) : std::nullopt;
    const std::string desktop = value("XDG_CURRENT_DESKTOP");
    // Of a condition nothing is known here, and what is not certain does not count.
    if (!entry || entry->isConditional || isOffFor(*entry, desktop) ||
        !isMeantFor(*entry, desktop)) {
        return LoginServiceStatus::notRegistered;
    }
    return canStart(*entry) ? LoginServiceStatus::enabled : LoginServiceStatus::notFound;
}

std::optional<LoginServiceError> AutostartLoginService::registerService() {
    if (command_.empty()) {
        return LoginServiceError{"Cannot start at login: the program's own file is not known"};
    }
    const auto text = autostartEntryText(command_);
    if (!text) {
        return failure("Cannot start at login", command_.front(),
                       "no autostart entry can hold this path");
    }
    return write(*text);
}

std::optional<LoginServiceError> AutostartLoginService::unregisterService() {
    if (const auto text = systemText()) {
        const auto entry = parseAutostartEntry(*text);
        if (entry && !entry->isOff && canStart(*entry)) {
            return write(switchedOffEntryText());
        }
    }
    const std::filesystem::path own = ownFile();
    struct stat found {};
    if (own.empty() || ::lstat(own.c_str(), &found) != 0) {
        if (own.empty() || errno == ENOENT || errno == ENOTDIR) {
            return std::nullopt;
        }
        return failure("Cannot remove", own, lastError().message());
    }
    // Nothing starts from a folder.
    if (!S_ISDIR(found.st_mode) && ::unlink(own.c_str()) != 0 && errno != ENOENT) {
        return failure("Cannot remove", own, lastError().message());
    }
    makeLasting(own.parent_path());
    return std::nullopt;
}

std::string AutostartLoginService::value(const char* name) const {
    const char* const text = environment_(name);
    return text != nullptr ? text : "";
}

bool AutostartLoginService::isSandboxed() const {
    return !command_.empty() && command_.front() == "flatpak";
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
    const std::string list = value("XDG_CONFIG_DIRS");
    std::string_view rest = list.empty() ? std::string_view("/etc/xdg") : list;
    while (!rest.empty()) {
        const std::filesystem::path folder = rest.substr(0, rest.find(':'));
        if (folder.is_absolute()) {
            if (auto text = textOf(folder / kEntry)) {
                return text;
            }
        }
        rest.remove_prefix(std::min(folder.native().size() + 1, rest.size()));
    }
    return std::nullopt;
}

bool AutostartLoginService::canStart(const AutostartEntry& entry) const {
    return isProgram(entry.program) && (entry.tryExec.empty() || isProgram(entry.tryExec));
}

bool AutostartLoginService::isProgram(const std::string& name) const {
    if (name.empty()) {
        return false;
    }
    // What started this program is there, even when a sandbox hides it.
    if (isSandboxed() && name == command_.front()) {
        return true;
    }
    return !findExecutable(name, value("PATH")).empty();
}

std::optional<LoginServiceError> AutostartLoginService::write(std::string_view text) {
    const std::filesystem::path own = ownFile();
    if (own.empty()) {
        return LoginServiceError{"Cannot change what starts at login: there is no home folder"};
    }
    // What is made where the sandbox shows nothing is seen by nobody else.
    std::error_code error;
    if (isSandboxed() && !std::filesystem::is_directory(own.parent_path(), error)) {
        return failure("Cannot write", own, "the sandbox does not show this folder");
    }
    if (error = makeFolder(own.parent_path()); error) {
        return failure("Cannot make", own.parent_path(), error.message());
    }
    if (error = replaceFile(own, text); error) {
        return failure("Cannot write", own, error.message());
    }
    return std::nullopt;
}

}  // namespace tarnwick::platform
