// SPDX-License-Identifier: MIT
// Child processes through calls that every POSIX system has.
#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <sys/types.h>
#include <vector>

#include "platform/child_process.h"

namespace tarnwick::platform {

/// Waiting times for the end of a child, in seconds.
struct ChildPatience {
    /// From the request to end until the child is killed.
    double asked = 0.1;
    /// After the child was killed. If it is stuck in the system longer than that, it is left
    /// behind, and its status is taken later.
    double forced = 1;
};

/// Children that could not be waited for. Any thread.
class LeftChildren {
 public:
    void add(pid_t id);
    /// Takes the status of children that have ended by now. Returns the number of those that are
    /// still left.
    std::size_t reap();

 private:
    std::mutex lock_;
    std::vector<pid_t> ids_;
};

class PosixChildProcesses final : public ChildProcesses {
 public:
    explicit PosixChildProcesses(ChildPatience patience = {});

    std::unique_ptr<ChildProcess> spawn(const std::string& path,
                                        const std::vector<std::string>& arguments) override;

    /// How many children of earlier calls are stuck. Every spawn() looks, too.
    std::size_t leftChildren() { return left_->reap(); }

 private:
    const ChildPatience patience_;
    const std::shared_ptr<LeftChildren> left_ = std::make_shared<LeftChildren>();
};

}  // namespace tarnwick::platform
