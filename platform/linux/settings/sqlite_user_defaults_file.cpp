#include "platform/linux/settings/sqlite_user_defaults_file.h"

#include <array>
#include <cerrno>
#include <ctime>
#include <fcntl.h>
#include <string>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tarnwick::platform {
namespace {

/// The database itself comes last: while it lies there under its name, nobody begins a fresh one,
/// which would make SQLite throw away a log left behind.
constexpr std::array kParts = {"-wal", "-shm", "-journal", ""};

std::error_code lastError() {
    return {errno, std::generic_category()};
}

bool isTaken(const std::filesystem::path& path) {
    struct stat found {};
    return ::lstat(path.c_str(), &found) == 0 || errno != ENOENT;
}

std::filesystem::path freeNameFor(const std::filesystem::path& file) {
    for (unsigned number = 1;; ++number) {
        const auto candidate = companionOf(file, (".damaged-" + std::to_string(number)).c_str());
        bool taken = false;
        for (const char* part : kParts) {
            taken = taken || isTaken(companionOf(candidate, part));
        }
        if (!taken) {
            return candidate;
        }
    }
}

}  // namespace

FolderLock::FolderLock(const std::filesystem::path& folder)
    : descriptor_(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    constexpr int kAttempts = 500;
    constexpr timespec kPause{0, 2'000'000};
    for (int i = 0; descriptor_ >= 0 && i < kAttempts; ++i) {
        if (::flock(descriptor_, LOCK_EX | LOCK_NB) == 0 ||
            (errno != EWOULDBLOCK && errno != EINTR)) {
            return;
        }
        ::nanosleep(&kPause, nullptr);
    }
}

FolderLock::~FolderLock() {
    if (descriptor_ >= 0) {
        ::close(descriptor_);
    }
}

bool FileIdentity::isUnchanged(const FileIdentity& other) const {
    return isSameFile(other) && size == other.size && modified.tv_sec == other.modified.tv_sec &&
           modified.tv_nsec == other.modified.tv_nsec;
}

std::optional<FileIdentity> identityOf(const std::filesystem::path& file) {
    struct stat found {};
    if (::stat(file.c_str(), &found) != 0) {
        return std::nullopt;
    }
    return FileIdentity{found.st_dev, found.st_ino, found.st_size, found.st_mtim};
}

std::filesystem::path companionOf(const std::filesystem::path& file, const char* suffix) {
    std::filesystem::path companion = file;
    companion += suffix;
    return companion;
}

bool hasWriteAheadLog(const std::filesystem::path& file) {
    const auto log = identityOf(companionOf(file, "-wal"));
    return log && log->size > 0;
}

bool isSurelyAbsent(const std::filesystem::path& file) {
    struct stat found {};
    return ::stat(file.c_str(), &found) != 0 && (errno == ENOENT || errno == ENOTDIR);
}

std::error_code obstacleToWriting(const std::filesystem::path& file) {
    const auto isOpen = [](const std::filesystem::path& path) {
        return ::faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) == 0;
    };
    if (isOpen(file.parent_path()) && (isOpen(file) || errno == ENOENT)) {
        return {};
    }
    return lastError();
}

SetAside setAside(const std::filesystem::path& file, const std::optional<FileIdentity>& judged) {
    const FolderLock lock(file.parent_path());
    const auto present = identityOf(file);
    if (present.has_value() != judged.has_value() || (present && !present->isUnchanged(*judged))) {
        return {};
    }
    const auto target = freeNameFor(file);
    for (const char* part : kParts) {
        if (::rename(companionOf(file, part).c_str(), companionOf(target, part).c_str()) != 0 &&
            errno != ENOENT) {
            return {std::nullopt, lastError()};
        }
    }
    return {target, {}};
}

}  // namespace tarnwick::platform
