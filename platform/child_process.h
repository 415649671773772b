// SPDX-License-Identifier: MIT
// Child processes whose output is read through a pipe.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace tarnwick::platform {

/// What one attempt to read gave.
struct PipeRead {
    enum class Outcome {
        /// `size` bytes, at least one.
        data,
        /// Nothing is there yet.
        wouldBlock,
        /// A signal interrupted the read.
        interrupted,
        /// The end of the output.
        end,
        /// The pipe is broken.
        failed,
    };
    Outcome outcome = Outcome::failed;
    std::size_t size = 0;
};

/// A started child process. The destructor terminates the child if it still runs, takes its status,
/// so that no zombie remains in the process table, and closes the pipe. One thread at a time.
class ChildProcess {
 public:
    virtual ~ChildProcess() = default;

    /// Waits until there is something to read, the output ends or `seconds` have passed. After
    /// read() has returned the end of the output, it waits until the time has passed; it may return
    /// earlier if the child ends.
    virtual void poll(double seconds) = 0;
    /// Reads the bytes that are there, up to the size of `buffer`. Does not wait.
    virtual PipeRead read(std::span<char> buffer) = 0;
    /// Absent while the child runs; then its exit status, or the number of the signal that ended it
    /// with a minus sign, or `kUnknownStatus`.
    virtual std::optional<std::int32_t> status() = 0;
    /// Asks the child to end, kills it if it does not end within a moment, and takes its status.
    /// Returns within about a second in any case. Does nothing if the child has ended.
    virtual void terminate() = 0;

    /// The status of a child when other code has already taken it, or when the child did not end in
    /// time even by force.
    static constexpr std::int32_t kUnknownStatus = -1'000'000;
};

/// Any thread.
class ChildProcesses {
 public:
    virtual ~ChildProcesses() = default;

    /// Starts the executable at `path`, with standard input and standard error connected to the
    /// null device and standard output to a pipe. `arguments` come after the path. Null when it
    /// cannot be started.
    virtual std::unique_ptr<ChildProcess> spawn(const std::string& path,
                                                const std::vector<std::string>& arguments) = 0;
};

}  // namespace tarnwick::platform
