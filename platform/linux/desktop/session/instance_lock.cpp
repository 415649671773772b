#include "platform/linux/desktop/session/instance_lock.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <utility>

namespace tarnwick::platform {
namespace {

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

// A display as a part of a file's name. A socket's address leaves no room for more than the end of
// a long one, which is where displays differ.
std::string fileNamePart(std::string_view display) {
    constexpr std::size_t kMost = 40;
    if (display.empty()) {
        return {};
    }
    display.remove_prefix(display.size() - std::min(display.size(), kMost));
    std::string part = "-" + std::string(display);
    std::ranges::replace(part, '/', '_');
    return part;
}

}  // namespace

InstanceLock::InstanceLock(std::string folder, std::string_view display) {
    if (!folder.empty()) {
        const std::string base = std::move(folder) + "/tarnwick" + fileNamePart(display);
        lockPath_ = base + ".lock";
        socketPath_ = base + ".socket";
    }
}

InstanceLock::~InstanceLock() {
    release();
}

void InstanceLock::release() {
    readable_.reset();
    if (socket_ >= 0) {
        close(std::exchange(socket_, -1));
        unlink(socketPath_.c_str());
    }
    // The lock's file stays: taking it away could part two instances that start just now.
    if (lock_ >= 0) {
        close(std::exchange(lock_, -1));
    }
}

bool InstanceLock::acquire(std::function<void()> asked) {
    asked_ = std::move(asked);
    if (lockPath_.empty()) {
        return true;
    }
    lock_ = open(lockPath_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
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

bool InstanceLock::askOwner() const {
    const auto address = addressOf(socketPath_);
    const int sender = address ? datagramSocket() : -1;
    if (sender < 0) {
        return false;
    }
    const ssize_t sent =
        sendto(sender, kRequest, sizeof(kRequest) - 1, 0, generic(*address), sizeof(*address));
    close(sender);
    return sent == static_cast<ssize_t>(sizeof(kRequest) - 1);
}

}  // namespace tarnwick::platform
