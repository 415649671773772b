// SPDX-License-Identifier: MIT
// Starting an executable with a pipe to its standard output.
#pragma once

#include <string>
#include <sys/types.h>
#include <utility>
#include <vector>

namespace tarnwick::platform {

/// Owns a file descriptor.
class Descriptor {
 public:
    explicit Descriptor(int descriptor = -1) : descriptor_(descriptor) {}
    Descriptor(Descriptor&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(descriptor_, other.descriptor_);
        return *this;
    }
    ~Descriptor() { close(); }

    bool isOpen() const { return descriptor_ >= 0; }
    int get() const { return descriptor_; }
    void close();

 private:
    int descriptor_;
};

struct SpawnedChild {
    /// 0 when nothing was started.
    pid_t id = 0;
    /// The reading end of the pipe; reads do not wait.
    Descriptor output{};
};

/// Starts the executable at `path` with `arguments` after the path. The child has the null device
/// as standard input and standard error, default signal settings, and none of this process's files
/// with the close-on-exec flag.
SpawnedChild spawnWithPipe(const std::string& path, const std::vector<std::string>& arguments);

}  // namespace tarnwick::platform
