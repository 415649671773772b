// Ending when the session or the user says so by a signal.
#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <csignal>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace tarnwick::platform {

/// Turns SIGTERM, SIGINT and SIGHUP into a call on the main thread for each that comes, so that the
/// program ends through its event loop; one that came before the loop runs is heard when it does.
/// SIGINT and SIGHUP stay ignored where they are, as for a program that is to outlive its terminal.
/// Destroyed, leaves every signal as it was. One for the process; must outlive the event loop. Main
/// thread.
class QuitSignals final : public QObject {
    Q_OBJECT

 public:
    explicit QuitSignals(std::function<void()> quit);
    ~QuitSignals() override;

 private:
    std::function<void()> quit_;
    std::unique_ptr<QSocketNotifier> readable_;
    /// The signals that are taken over, and what they did before.
    std::vector<std::pair<int, struct sigaction>> before_;
};

}  // namespace tarnwick::platform
