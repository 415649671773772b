// Ending when the session or the user says so by a signal.
#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <functional>
#include <memory>

namespace tarnwick::platform {

/// Turns SIGTERM, SIGINT and SIGHUP into one call on the main thread, so that the program ends
/// through its event loop. One for the process; must outlive the event loop. Main thread.
class QuitSignals final : public QObject {
    Q_OBJECT

 public:
    explicit QuitSignals(std::function<void()> quit);
    ~QuitSignals() override;

 private:
    std::function<void()> quit_;
    std::unique_ptr<QSocketNotifier> readable_;
};

}  // namespace tarnwick::platform
