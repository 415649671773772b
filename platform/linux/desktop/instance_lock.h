// Tells two instances apart where there is no session bus: a locked file, and a local socket over
// which the second asks the first. Both vanish in effect with their process, however it ends.
#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <functional>
#include <memory>
#include <string>

namespace tarnwick::platform {

/// Main thread.
class InstanceLock final : public QObject {
    Q_OBJECT

 public:
    /// `folder` is private to the user. Empty: acquire() always succeeds.
    explicit InstanceLock(std::string folder);
    ~InstanceLock() override;

    /// True when this process is now the owner, or when the folder cannot be used, since running
    /// unguarded is better than not running. `asked` is called for each request of another start.
    bool acquire(std::function<void()> asked);

    /// Asks the owner; true once it has taken the request. An owner that is still starting is
    /// waited for, at most `milliseconds`.
    bool askOwner(int milliseconds) const;

 private:
    void listen();
    void receive();

    std::string folder_;
    std::string socketPath_;
    int lock_ = -1;
    int socket_ = -1;
    std::function<void()> asked_;
    std::unique_ptr<QSocketNotifier> readable_;
};

}  // namespace tarnwick::platform
