// SPDX-License-Identifier: MIT
#include "benchmarks/bare_interface_files.h"

#include <fcntl.h>
#include <filesystem>
#include <system_error>
#include <unistd.h>

namespace tarnwick::benchmarks {

BareInterfaceFiles::BareInterfaceFiles()
    : list_(::open("/proc/net/dev", O_RDONLY | O_CLOEXEC)), buffer_(std::size_t{1} << 18) {
    std::error_code error;
    for (const auto& link : std::filesystem::directory_iterator("/sys/class/net", error)) {
        const int descriptor = ::open((link.path() / "flags").c_str(), O_RDONLY | O_CLOEXEC);
        if (descriptor >= 0) {
            flags_.push_back(descriptor);
        }
    }
}

BareInterfaceFiles::~BareInterfaceFiles() {
    for (const int descriptor : flags_) {
        ::close(descriptor);
    }
    ::close(list_);
}

std::size_t BareInterfaceFiles::read() {
    std::size_t all = 0;
    // The list comes a page at a time.
    while (true) {
        const ssize_t size =
            ::pread(list_, buffer_.data() + all, buffer_.size() - all, static_cast<off_t>(all));
        if (size <= 0) {
            break;
        }
        all += static_cast<std::size_t>(size);
    }
    for (const int descriptor : flags_) {
        const ssize_t size = ::pread(descriptor, buffer_.data(), buffer_.size(), 0);
        all += size > 0 ? static_cast<std::size_t>(size) : 0;
    }
    return all;
}

}  // namespace tarnwick::benchmarks
