// SPDX-License-Identifier: MIT
#include "platform/linux/processes/kept_process_files.h"

#include <cerrno>
#include <charconv>
#include <cstring>
#include <sys/resource.h>
#include <unistd.h>
#include <utility>

namespace tarnwick::platform {

namespace {

std::size_t mostKept() {
    rlimit descriptors{};
    if (::getrlimit(RLIMIT_NOFILE, &descriptors) != 0) {
        return 0;
    }
    return static_cast<std::size_t>(descriptors.rlim_cur / 2);
}

// No descriptor is left, to this process or to the whole system.
bool isOutOfDescriptors(int error) {
    return error == EMFILE || error == ENFILE;
}

}  // namespace

void KeptProcessFiles::beginWalk(const FileDescriptor& folder) {
    folder_ = &folder;
    limit_ = mostKept();
    next_ = 0;
    walked_.clear();
    walked_.reserve(kept_.size());
}

std::optional<std::string_view> KeptProcessFiles::read(std::int32_t identifier) {
    FileDescriptor file = takeKept(identifier);
    std::optional<std::string_view> content;
    if (file.isOpen()) {
        content = contentOf(file);
    }
    if (!content) {
        // No file was kept, or it was kept for a process that has ended; its number may belong to
        // another process now.
        file = openStat(identifier);
        if (!file.isOpen()) {
            return std::nullopt;
        }
        content = contentOf(file);
    }
    const std::size_t open = walked_.size() + kept_.size() - next_;
    if (content && open < limit_) {
        walked_.push_back({.identifier = identifier, .file = std::move(file)});
    }
    return content;
}

void KeptProcessFiles::endWalk() {
    std::swap(kept_, walked_);
    walked_.clear();
    folder_ = nullptr;
}

void KeptProcessFiles::release() {
    kept_ = std::vector<Kept>();
    walked_ = std::vector<Kept>();
    next_ = 0;
}

FileDescriptor KeptProcessFiles::takeKept(std::int32_t identifier) {
    while (next_ < kept_.size() && kept_[next_].identifier < identifier) {
        kept_[next_++].file.close();
    }
    if (next_ < kept_.size() && kept_[next_].identifier == identifier) {
        return std::move(kept_[next_++].file);
    }
    return {};
}

FileDescriptor KeptProcessFiles::openStat(std::int32_t identifier) {
    constexpr char suffix[] = "/stat";
    std::array<char, 32> path;
    char* const end = std::to_chars(path.begin(), path.end(), identifier).ptr;
    std::memcpy(end, suffix, sizeof suffix);
    FileDescriptor file(*folder_, path.data());
    if (!file.isOpen() && isOutOfDescriptors(errno)) {
        // Other code needs the descriptors more. No file is kept in the rest of this walk.
        limit_ = 0;
        release();
        file = FileDescriptor(*folder_, path.data());
    }
    return file;
}

std::optional<std::string_view> KeptProcessFiles::contentOf(const FileDescriptor& file) {
    ssize_t size = 0;
    do {
        size = ::pread(file.get(), buffer_.data(), buffer_.size(), 0);
    } while (size < 0 && errno == EINTR);
    if (size <= 0) {
        return std::nullopt;
    }
    return std::string_view(buffer_.data(), static_cast<std::size_t>(size));
}

}  // namespace tarnwick::platform
