// Child processes with what every POSIX system has.
#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <sys/types.h>
#include <vector>

#include "platform/child_process.h"

namespace tarnwick::platform {

/// How long a child is waited for, in seconds.
struct ChildPatience {
    /// After it was asked to end, before it is ended by force.
    double asked = 0.1;
    /// After it was ended by force. A child that is stuck in the system beyond that time is left,
    /// and its status taken later.
    double forced = 1;
};

/// Children that could not be waited for. Any thread.
class LeftChildren {
 public:
    void add(pid_t id);
    /// Takes the status of those that have ended by now; how many are still left.
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
