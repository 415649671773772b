#include "platform/linux/desktop/quit_signals.h"

#include <array>
#include <cerrno>
#include <csignal>
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
    // A counter that cannot take more has woken the main thread already.
    [[maybe_unused]] const ssize_t written = ::write(wakeUp, &one, sizeof one);
    errno = savedError;
}

void setHandler(void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    for (const int signal : kSignals) {
        ::sigaction(signal, &action, nullptr);
    }
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
    setHandler(&handle);
}

QuitSignals::~QuitSignals() {
    if (wakeUp < 0) {
        return;
    }
    setHandler(SIG_DFL);
    readable_.reset();
    ::close(std::exchange(wakeUp, -1));
}

}  // namespace tarnwick::platform
