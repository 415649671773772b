// SPDX-License-Identifier: MIT
// Reading the small files of /proc and /sys.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick::platform {

/// Owns a file descriptor; closed on exec.
class FileDescriptor {
 public:
    FileDescriptor() = default;
    /// Takes over what a system call returned: an open descriptor, or -1.
    explicit FileDescriptor(int descriptor) : descriptor_(descriptor) {}
    /// Opens the file for reading. If isOpen() is false afterwards, errno has the reason.
    explicit FileDescriptor(const std::string& path);
    /// The same for a path relative to an open folder.
    FileDescriptor(const FileDescriptor& folder, const char* relative);
    FileDescriptor(FileDescriptor&& other) noexcept;
    FileDescriptor& operator=(FileDescriptor&& other) noexcept;
    ~FileDescriptor();

    bool isOpen() const { return descriptor_ >= 0; }
    int get() const { return descriptor_; }
    /// Whether a program serves the file in place of the kernel, as container managers do with
    /// parts of /proc. Then reading waits for that program, and so does closing a file: while it
    /// hangs, a process that has one open cannot even end.
    bool isServed() const;
    void close();

 private:
    int descriptor_ = -1;
};

/// A file that is read at every tick: opened once and read again from its start. It may be missing
/// and appear later, and a device that went away and came back is found again. One thread at a
/// time.
class KeptFile {
 public:
    /// How the kernel delivers the file if the buffer has room for all of it.
    enum class Delivery {
        whole,
        /// At most a page at a time, as it does with tables that may be long.
        inParts,
    };

    /// `expectedSize` is the first size of the buffer, bytes; it grows when the file is larger.
    explicit KeptFile(std::string path, std::size_t expectedSize = 4096,
                      Delivery delivery = Delivery::whole);

    /// The current content of the file; valid until the next call. Absent if it cannot be read. A
    /// file that is delivered whole usually takes one system call.
    std::optional<std::string_view> read();

    /// As FileDescriptor::isServed(), when it was last opened. Such a file is not kept open.
    bool isServed() const { return isServed_; }

    /// The system's error code of the last read that failed; 0 before any.
    int error() const { return error_; }

 private:
    /// Bytes read, or -1 with `error_` set.
    std::ptrdiff_t readFromStart();

    std::string path_;
    Delivery delivery_ = Delivery::whole;
    FileDescriptor file_;
    bool isServed_ = false;
    std::vector<char> buffer_;
    int error_ = 0;
};

/// Reads a whole file once, in as many system calls as needed. Absent if it cannot be read or has
/// `limit` bytes or more.
std::optional<std::string> readWholeFile(const std::string& path,
                                         std::size_t limit = std::size_t{16} << 20);

/// Returns the path `relative` below `root`, the root of the tree that a reader reads.
std::string belowRoot(const std::string& root, std::string_view relative);

}  // namespace tarnwick::platform
