// The store's file as the file system sees it: where it lies, whether it can be written, and how a
// bad one is put out of the way.
#pragma once

#include <filesystem>
#include <optional>
#include <sys/types.h>
#include <system_error>

namespace tarnwick::platform {

/// Tells a file from another one that has taken its name.
struct FileIdentity {
    dev_t device = 0;
    ino_t inode = 0;
    off_t size = 0;
    timespec modified{};

    /// The same file, whatever has been written into it.
    bool isSameFile(const FileIdentity& other) const {
        return device == other.device && inode == other.inode;
    }
    /// The same file, and nothing has been written into it.
    bool isUnchanged(const FileIdentity& other) const;
};

/// Absent when nothing lies there, or nothing that this process may look at.
std::optional<FileIdentity> identityOf(const std::filesystem::path& file);

/// Name of a companion that SQLite keeps beside its database, such as "-wal".
std::filesystem::path companionOf(const std::filesystem::path& file, const char* suffix);

/// The file's write-ahead log has something in it.
bool hasWriteAheadLog(const std::filesystem::path& file);

/// Nothing lies there, as far as can be known for certain.
bool isSurelyAbsent(const std::filesystem::path& file);

/// What keeps this process from writing the file and making others beside it; no error where
/// nothing does. A file not yet there counts by its folder.
std::error_code obstacleToWriting(const std::filesystem::path& file);

/// Makes the holder the only one of the processes that ask for it inside a folder; they hold it for
/// moments. Where a folder cannot be locked, or another holds it for a second (it has been
/// stopped), work goes on without.
class FolderLock {
 public:
    explicit FolderLock(const std::filesystem::path& folder);
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;
    ~FolderLock();

 private:
    int descriptor_;
};

struct SetAside {
    /// The file's new name; absent when somebody else has moved or written it meanwhile.
    std::optional<std::filesystem::path> movedTo;
    /// Why the file is still where it was.
    std::error_code error;
};

/// Renames `file`, judged bad while it was `judged` (absent: only companions were there) and not
/// written since, with its companions to the first free "….damaged-N". Overwrites nothing; when
/// several processes find the same bad file, one of them moves it.
SetAside setAside(const std::filesystem::path& file, const std::optional<FileIdentity>& judged);

}  // namespace tarnwick::platform
