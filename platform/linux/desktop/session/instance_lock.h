// Tells two instances on one display apart whatever bus they see: a locked file, and a local socket
// over which the second asks the first. Both vanish in effect with their process, however it ends.
#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace tarnwick::platform {

/// Main thread.
class InstanceLock final : public QObject {
    Q_OBJECT

 public:
    /// `folder` is private to the user. Empty: acquire() always succeeds. The instances on other
    /// displays than `display`, which is any text, are none of its business.
    explicit InstanceLock(std::string folder, std::string_view display = {});
    ~InstanceLock() override;

    /// True when this process is now the owner, or when the folder cannot be used, since running
    /// unguarded is better than not running. `asked` is called for each request of another start.
    bool acquire(std::function<void()> asked);

    /// Asks the owner once; true when it has taken the request. False while the owner starts or
    /// ends.
    bool askOwner() const;

    /// The next one to acquire it succeeds. More often does no harm.
    void release();

 private:
    void listen();
    void receive();

    /// Empty where there is no folder.
    std::string lockPath_;
    std::string socketPath_;
    int lock_ = -1;
    int socket_ = -1;
    std::function<void()> asked_;
    std::unique_ptr<QSocketNotifier> readable_;
};

}  // namespace tarnwick::platform
