// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/session/quit_signals.h"

#include <array>
#include <cerrno>
#include <cstdint>
#include <sys/eventfd.h>
#include <unistd.h>
#include <utility>

namespace tarnwick::platform {
namespace {

constexpr std::array kSignals = {SIGTERM, SIGINT, SIGHUP};

/// Written by the signal handler, which may do little else.
int wakeUp = -1;

void handle(int) {
    const int savedError = errno;
    const std::uint64_t one = 1;
    // If the write fails because the counter is full, the main thread has already been woken.
    [[maybe_unused]] const ssize_t written = ::write(wakeUp, &one, sizeof one);
    errno = savedError;
}

/// A program that was started to ignore its terminal's signals (nohup) keeps ignoring them. SIGTERM
/// is never ignored.
bool isToStayIgnored(int signal, const struct sigaction& action) {
    return signal != SIGTERM && action.sa_handler == SIG_IGN;
}

}  // namespace

QuitSignals::QuitSignals(std::function<void()> quit) : quit_(std::move(quit)) {
    wakeUp = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (wakeUp < 0) {
        return;  // The signals keep their default: they end the process at once.
    }
    readable_ = std::make_unique<QSocketNotifier>(wakeUp, QSocketNotifier::Read);
    connect(readable_.get(), &QSocketNotifier::activated, this, [this] {
        std::uint64_t count = 0;
        if (::read(wakeUp, &count, sizeof count) == sizeof count) {
            quit_();
        }
    });
    struct sigaction action {};
    action.sa_handler = &handle;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    for (const int signal : kSignals) {
        struct sigaction old {};
        ::sigaction(signal, nullptr, &old);
        if (!isToStayIgnored(signal, old)) {
            ::sigaction(signal, &action, nullptr);
            before_.emplace_back(signal, old);
        }
    }
}

QuitSignals::~QuitSignals() {
    if (wakeUp < 0) {
        return;
    }
    for (const auto& [signal, old] : before_) {
        ::sigaction(signal, &old, nullptr);
    }
    readable_.reset();
    ::close(std::exchange(wakeUp, -1));
}

}  // namespace tarnwick::platform
