// SPDX-License-Identifier: MIT
#include "platform/linux/files/kept_file.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <linux/magic.h>
#include <sys/vfs.h>
#include <unistd.h>
#include <utility>

namespace tarnwick::platform {

namespace {

// A guard against endless reading, in bytes. These files are far smaller on every machine.
constexpr std::size_t kLargestFile = std::size_t{16} << 20;

constexpr int kOpeningFlags = O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;

}  // namespace

FileDescriptor::FileDescriptor(const std::string& path)
    : descriptor_(::open(path.c_str(), kOpeningFlags)) {}

FileDescriptor::FileDescriptor(const FileDescriptor& folder, const char* relative)
    : descriptor_(::openat(folder.get(), relative, kOpeningFlags)) {}

FileDescriptor::FileDescriptor(FileDescriptor&& other) noexcept
    : descriptor_(std::exchange(other.descriptor_, -1)) {}

FileDescriptor& FileDescriptor::operator=(FileDescriptor&& other) noexcept {
    if (this != &other) {
        close();
        descriptor_ = std::exchange(other.descriptor_, -1);
    }
    return *this;
}

FileDescriptor::~FileDescriptor() {
    close();
}

void FileDescriptor::close() {
    if (isOpen()) {
        ::close(std::exchange(descriptor_, -1));
    }
}

bool FileDescriptor::isServed() const {
    struct statfs system {};
    return ::fstatfs(descriptor_, &system) == 0 && system.f_type == FUSE_SUPER_MAGIC;
}

KeptFile::KeptFile(std::string path, std::size_t expectedSize, Delivery delivery)
    : path_(std::move(path)), delivery_(delivery), buffer_(expectedSize) {}

std::optional<std::string_view> KeptFile::read() {
    std::ptrdiff_t size = file_.isOpen() ? readFromStart() : -1;
    if (size < 0) {
        file_ = FileDescriptor(path_);
        if (!file_.isOpen()) {
            error_ = errno;
            return std::nullopt;
        }
        isServed_ = file_.isServed();
        size = readFromStart();
    }
    if (size < 0 || isServed_) {
        file_.close();
    }
    if (size < 0) {
        return std::nullopt;
    }
    return std::string_view(buffer_.data(), static_cast<std::size_t>(size));
}

std::ptrdiff_t KeptFile::readFromStart() {
    std::size_t filled = 0;
    while (true) {
        const ssize_t size = ::pread(file_.get(), buffer_.data() + filled, buffer_.size() - filled,
                                     static_cast<off_t>(filled));
        if (size < 0) {
            if (errno == EINTR) {
                continue;
            }
            error_ = errno;
            return -1;
        }
        filled += static_cast<std::size_t>(size);
        if (filled < buffer_.size()) {
            if (delivery_ == Delivery::whole || size == 0) {
                return static_cast<std::ptrdiff_t>(filled);
            }
            continue;
        }
        // A full buffer may have cut the file short. Everything is read again, so that the parts
        // belong to one moment.
        if (buffer_.size() >= kLargestFile) {
            error_ = EFBIG;
            return -1;
        }
        buffer_.resize(buffer_.size() * 2 + 64);
        filled = 0;
    }
}

std::optional<std::string> readWholeFile(const std::string& path, std::size_t limit) {
    const FileDescriptor file(path);
    if (!file.isOpen()) {
        return std::nullopt;
    }
    std::string content;
    std::array<char, 4096> part;
    while (content.size() < limit) {
        const ssize_t size = ::read(file.get(), part.data(), part.size());
        if (size == 0) {
            return content;
        }
        if (size > 0) {
            content.append(part.data(), static_cast<std::size_t>(size));
        } else if (errno != EINTR) {
            return std::nullopt;
        }
    }
    return std::nullopt;
}

std::string belowRoot(const std::string& root, std::string_view relative) {
    while (relative.starts_with('/')) {
        relative.remove_prefix(1);
    }
    std::string path = root;
    if (!path.ends_with('/')) {
        path += '/';
    }
    path += relative;
    return path;
}

}  // namespace tarnwick::platform
