// SPDX-License-Identifier: MIT
// Ends the program when the session or the user sends a signal.
#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <csignal>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace tarnwick::platform {

/// Turns SIGTERM, SIGINT and SIGHUP into a call of `quit` on the main thread, so that the program
/// ends through its event loop. Signals that come close together may give one call. A signal that
/// comes before the loop runs is handled when it runs.
///
/// If SIGINT or SIGHUP is ignored, it stays ignored, as for a program that should outlive its
/// terminal. The destructor restores all signals. One per process. Main thread. Requires: the
/// object outlives the event loop.
class QuitSignals final : public QObject {
    Q_OBJECT

 public:
    explicit QuitSignals(std::function<void()> quit);
    ~QuitSignals() override;

 private:
    std::function<void()> quit_;
    std::unique_ptr<QSocketNotifier> readable_;
    /// The signals that were taken over, with their previous actions.
    std::vector<std::pair<int, struct sigaction>> before_;
};

}  // namespace tarnwick::platform
