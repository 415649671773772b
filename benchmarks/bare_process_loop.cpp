// SPDX-License-Identifier: MIT
#include "benchmarks/bare_process_loop.h"

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <unistd.h>

#include "platform/linux/processes/linux_process_table.h"

namespace tarnwick::benchmarks {

std::vector<std::int32_t> population() {
    std::vector<std::int32_t> identifiers;
    platform::LinuxProcessTable().forEachProcess([&identifiers](platform::ProcessEntry& process) {
        identifiers.push_back(process.identifier());
    });
    if (identifiers.empty()) {
        std::perror("/proc");
        std::exit(1);
    }
    return identifiers;
}

BareProcessLoop::BareProcessLoop() : identifiers_(population()), buffer_(4096) {}

std::size_t BareProcessLoop::read() {
    std::size_t bytes = 0;
    for (const std::int32_t identifier : identifiers_) {
        const std::string path = "/proc/" + std::to_string(identifier) + "/stat";
        const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
        if (descriptor < 0) {
            continue;
        }
        const ssize_t size = ::read(descriptor, buffer_.data(), buffer_.size());
        if (size > 0) {
            bytes += static_cast<std::size_t>(size);
        }
        ::close(descriptor);
    }
    return bytes;
}

}  // namespace tarnwick::benchmarks
