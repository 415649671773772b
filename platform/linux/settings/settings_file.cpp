// SPDX-License-Identifier: MIT
#include "platform/linux/settings/settings_file.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <string_view>
#include <sys/file.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "platform/linux/files/folders.h"
#include "platform/linux/files/last_error.h"

namespace tarnwick::platform {
namespace {

constexpr int kAttempts = 5;
/// As many as the system follows.
constexpr int kLinks = 40;

/// An open file, closed at the end.
struct Opened {
    explicit Opened(const std::filesystem::path& path, int flags)
        : number(::open(path.c_str(), flags | O_CLOEXEC, 0600)) {}
    Opened(const Opened&) = delete;
    Opened& operator=(const Opened&) = delete;
    ~Opened() {
        if (number >= 0) {
            ::close(number);
        }
    }

    const int number;
};

FileStamp stampOf(const struct stat& found) {
    return {found.st_dev, found.st_ino, found.st_size, found.st_mtim.tv_sec, found.st_mtim.tv_nsec};
}

/// Kind of error that says that somebody else has written the file meanwhile.
constexpr std::errc kOvertaken = std::errc::resource_unavailable_try_again;

std::error_code errorIfChanged(const std::filesystem::path& target, const FileStamp& expected) {
    struct stat found {};
    const FileStamp stamp = ::stat(target.c_str(), &found) == 0 ? stampOf(found) : FileStamp{};
    return stamp == expected ? std::error_code() : std::make_error_code(kOvertaken);
}

/// Makes a file that is on the disk when it returns.
std::error_code writeFile(const std::filesystem::path& file, std::string_view text) {
    const Opened made(file, O_WRONLY | O_CREAT | O_EXCL);
    if (made.number < 0) {
        return lastError();
    }
    while (!text.empty()) {
        const ssize_t written = ::write(made.number, text.data(), text.size());
        if (written < 0 && errno != EINTR) {
            return lastError();
        }
        text.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(written, 0)));
    }
    return ::fsync(made.number) == 0 ? std::error_code() : lastError();
}

/// Where the links lead that `file` may be, whether or not anything lies there.
std::filesystem::path followLinks(std::filesystem::path file) {
    std::error_code error;
    for (int link = 0; link < kLinks && std::filesystem::is_symlink(file, error); ++link) {
        file = file.parent_path() / std::filesystem::read_symlink(file, error);
    }
    return file;
}

struct Reading {
    /// Of the file; of one that is longer than any settings, the beginning.
    std::string text{};
    FileStamp stamp{};
    /// Why the file cannot be read; empty also where there is none.
    std::string trouble{};
};

/// Waits for nobody, not for the other end of a pipe either.
Reading readSettings(const std::filesystem::path& target) {
    Reading reading;
    const Opened file(target, O_RDONLY | O_NONBLOCK | O_NOCTTY);
    struct stat found {};
    if (file.number < 0 || ::fstat(file.number, &found) != 0) {
        const bool isMissing = errno == ENOENT || errno == ENOTDIR;
        reading.trouble = isMissing ? "" : lastError().message();
        return reading;
    }
    if (!S_ISREG(found.st_mode)) {
        reading.trouble = "not a file";
        return reading;
    }
    reading.stamp = stampOf(found);
    const auto size = static_cast<std::size_t>(found.st_size);
    reading.text.resize(std::min(size, SettingsDocument::kLimit) + 1);
    std::size_t length = 0;
    ssize_t got = 1;
    while (got != 0 && length < reading.text.size()) {
        got = ::read(file.number, &reading.text[length], reading.text.size() - length);
        if (got < 0 && errno != EINTR) {
            reading.trouble = lastError().message();
            return reading;
        }
        length += static_cast<std::size_t>(std::max<ssize_t>(got, 0));
    }
    reading.text.resize(length);
    return reading;
}

/// Puts `text` in the place of the file whose stamp is `expected`: whole and for good, or not at
/// all. For this user only. Of several processes that write in one folder one waits for another.
std::error_code replaceSettings(const std::filesystem::path& target, std::string_view text,
                                const FileStamp& expected) {
    // A file that its user has made read-only stays, though its folder would let it be replaced.
    if (::faccessat(AT_FDCWD, target.c_str(), W_OK, AT_EACCESS) != 0 && errno != ENOENT) {
        return lastError();
    }
    // The lock is for the name beside the file; it is let go with the folder.
    const Opened folder(target.parent_path(), O_RDONLY | O_DIRECTORY);
    ::flock(folder.number, LOCK_EX);
    const auto beside = target.parent_path() / ("." + target.filename().native() + ".new");
    // Left by one that was ended on the way.
    ::unlink(beside.c_str());
    std::error_code error = writeFile(beside, text);
    if (!error) {
        error = errorIfChanged(target, expected);
    }
    if (!error && ::rename(beside.c_str(), target.c_str()) != 0) {
        error = lastError();
    }
    if (error) {
        ::unlink(beside.c_str());
        return error;
    }
    ::fsync(folder.number);
    return {};
}

/// Renames the file whose stamp is `expected` to the first free "….damaged-N", which `name`
/// becomes.
std::error_code setSettingsAside(const std::filesystem::path& target, const FileStamp& expected,
                                 std::filesystem::path& name) {
    const Opened folder(target.parent_path(), O_RDONLY | O_DIRECTORY);
    ::flock(folder.number, LOCK_EX);
    struct stat found {};
    int number = 1;
    do {
        name = target;
        name += ".damaged-" + std::to_string(number++);
    } while (::lstat(name.c_str(), &found) == 0);
    const std::error_code error = errorIfChanged(target, expected);
    return error || ::rename(target.c_str(), name.c_str()) == 0 ? error : lastError();
}

}  // namespace

std::filesystem::path settingsFile(const std::function<const char*(const char*)>& environment) {
    const auto isAbsolute = [](const char* path) { return path != nullptr && path[0] == '/'; };
    const std::filesystem::path place = std::filesystem::path("tarnwick") / "settings.json";
    if (const char* folder = environment("XDG_CONFIG_HOME"); isAbsolute(folder)) {
        return folder / place;
    }
    if (const char* home = environment("HOME"); isAbsolute(home)) {
        return std::filesystem::path(home) / ".config" / place;
    }
    return {};
}

SettingsWatch::SettingsWatch() : descriptor_(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {}

SettingsWatch::~SettingsWatch() {
    if (descriptor_ >= 0) {
        ::close(descriptor_);
    }
}

void SettingsWatch::add(std::filesystem::path folder) const {
    constexpr std::uint32_t events =
        IN_CLOSE_WRITE | IN_CREATE | IN_MOVED_TO | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;
    while (::inotify_add_watch(descriptor_, folder.c_str(), events) < 0 && errno == ENOENT &&
           folder.has_relative_path()) {
        folder = folder.parent_path();
    }
}

bool SettingsWatch::concerns(const std::set<std::string>& names) const {
    alignas(inotify_event) std::array<char, 4096> buffer;
    bool concerns = false;
    ssize_t got = 0;
    while ((got = ::read(descriptor_, buffer.data(), buffer.size())) > 0) {
        for (const char* at = buffer.data(); at < buffer.data() + got;) {
            const auto* event = reinterpret_cast<const inotify_event*>(at);
            concerns = concerns || event->len == 0 || names.count(event->name) > 0;
            at += sizeof(inotify_event) + event->len;
        }
    }
    return concerns;
}

SettingsOutcome SettingsExchange::perform(const SettingsWatch& watch) const {
    SettingsOutcome outcome;
    for (int count = 0; count < kAttempts; ++count) {
        if (attempt(watch, outcome)) {
            return outcome;
        }
    }
    outcome.suspect.emplace();
    return outcome;
}

bool SettingsExchange::attempt(const SettingsWatch& watch, SettingsOutcome& outcome) const {
    outcome.contents.reset();
    outcome.yielded.clear();
    if (file.empty()) {
        outcome.lines = {
            "settings: there is no home directory to keep them in; changes are lost when the "
            "program ends"};
        return true;
    }
    const auto give = [this, &outcome](const std::string& trouble) {
        outcome.lines.push_back("settings: " + file.native() + trouble +
                                "; changes are kept in memory");
        return true;
    };
    const auto target = followLinks(file);
    outcome.fileName = target.filename().native();
    std::error_code error;
    if (!changes.empty()) {
        error = makeFolder(target.parent_path());
    }
    // Before the reading, so that nothing is missed.
    watch.add(file.parent_path());
    watch.add(target.parent_path());
    const Reading reading = readSettings(target);
    if (!reading.trouble.empty()) {
        return give(" cannot be used (" + reading.trouble + ")");
    }
    // An editor may have emptied the file to fill it anew.
    const bool isEmpty = reading.text.find_first_not_of(" \t\r\n") == std::string::npos;
    auto contents = isEmpty ? base : SettingsDocument::decode(reading.text);
    if (!contents) {
        if (suspect && *suspect != reading.stamp) {
            outcome.suspect = reading.stamp;
            return true;
        }
        std::filesystem::path name;
        error = setSettingsAside(target, reading.stamp, name);
        if (error && error != kOvertaken) {
            return give(" holds no settings and cannot be moved away (" + error.message() + ")");
        }
        if (!error) {
            outcome.lines.push_back("settings: " + target.native() +
                                    " holds no settings; it is kept as " +
                                    name.filename().native() + ", and a new one is begun");
        }
        return false;
    }
    outcome.contents = contents;
    const bool isMoved = !outcome.lines.empty();
    bool isOther = isEmpty && (!changes.empty() || (isMoved && !contents->empty()));
    for (const auto& [key, value] : changes) {
        if (yielding.count(key) > 0 && contents->value(key) != base.value(key)) {
            outcome.yielded.insert(key);
        } else {
            isOther = contents->set(key, value) || isOther;
        }
    }
    if (isOther && !error) {
        // What could not be read again is not written.
        const std::string text = contents->encode();
        error = text.size() > SettingsDocument::kLimit
                    ? std::make_error_code(std::errc::file_too_large)
                    : replaceSettings(target, text, reading.stamp);
    }
    if (isOther && error) {
        return error != kOvertaken && give(" cannot be written (" + error.message() + ")");
    }
    outcome.contents = std::move(contents);
    outcome.isWritten = true;
    return true;
}

}  // namespace tarnwick::platform
