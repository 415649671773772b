#include "platform/linux/desktop/instance_lock.h"

#include <QDeadlineTimer>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <poll.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <utility>

namespace tarnwick::platform {
namespace {

constexpr int kPauseMilliseconds = 20;
constexpr char kRequest[] = "open panel";

// None when the path is longer than a socket's address can be.
std::optional<sockaddr_un> addressOf(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof(address.sun_path)) {
        return std::nullopt;
    }
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    return address;
}

const sockaddr* generic(const sockaddr_un& address) {
    return reinterpret_cast<const sockaddr*>(&address);
}

int datagramSocket() {
    return socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
}

}  // namespace

InstanceLock::InstanceLock(std::string folder) : folder_(std::move(folder)) {
    if (!folder_.empty()) {
        socketPath_ = folder_ + "/tarnwick.socket";
    }
}

InstanceLock::~InstanceLock() {
    readable_.reset();
    if (socket_ >= 0) {
        close(socket_);
        unlink(socketPath_.c_str());
    }
    // The lock's file stays: taking it away could part two instances that start just now.
    if (lock_ >= 0) {
        close(lock_);
    }
}

bool InstanceLock::acquire(std::function<void()> asked) {
    asked_ = std::move(asked);
    if (folder_.empty()) {
        return true;
    }
    const std::string path = folder_ + "/tarnwick.lock";
    lock_ = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (lock_ < 0) {
        return true;
    }
    if (flock(lock_, LOCK_EX | LOCK_NB) != 0) {
        const bool held = errno == EWOULDBLOCK;
        close(std::exchange(lock_, -1));
        return !held;
    }
    listen();
    return true;
}

void InstanceLock::listen() {
    const auto address = addressOf(socketPath_);
    if (!address) {
        return;
    }
    // Whoever made it is gone: the lock is ours.
    unlink(socketPath_.c_str());
    socket_ = datagramSocket();
    if (socket_ < 0) {
        return;
    }
    if (bind(socket_, generic(*address), sizeof(*address)) != 0) {
        close(std::exchange(socket_, -1));
        return;
    }
    readable_ = std::make_unique<QSocketNotifier>(socket_, QSocketNotifier::Read);
    connect(readable_.get(), &QSocketNotifier::activated, this, [this] { receive(); });
}

void InstanceLock::receive() {
    char bytes[sizeof(kRequest)];
    bool request = false;
    // Several that came together are one wish.
    for (;;) {
        const ssize_t size = recv(socket_, bytes, sizeof(bytes), 0);
        if (size < 0) {
            break;
        }
        request = request || (static_cast<std::size_t>(size) == sizeof(kRequest) - 1 &&
                              std::memcmp(bytes, kRequest, sizeof(kRequest) - 1) == 0);
    }
    if (request && asked_) {
        asked_();
    }
}

bool InstanceLock::askOwner(int milliseconds) const {
    const auto address = addressOf(socketPath_);
    const int sender = address ? datagramSocket() : -1;
    if (sender < 0) {
        return false;
    }
    const QDeadlineTimer deadline(milliseconds);
    bool sent = false;
    for (;;) {
        sent = sendto(sender, kRequest, sizeof(kRequest) - 1, 0, generic(*address),
                      sizeof(*address)) == static_cast<ssize_t>(sizeof(kRequest) - 1);
        if (sent || deadline.hasExpired()) {
            break;
        }
        poll(nullptr, 0, kPauseMilliseconds);
    }
    close(sender);
    return sent;
}

}  // namespace tarnwick::platform
