// SPDX-License-Identifier: MIT
// The whole panel on an invented machine, in time that the benchmark advances by hand.
#pragma once

#include <QObject>
#include <QRect>
#include <memory>

#include "ui/panel/menu_bar_view.h"

namespace tarnwick::benchmarks {

/// Covers everything from the samplers' answers to the painted widgets, without a display. Every
/// figure changes at each refresh, and the processor is busy enough for the list of processes to
/// show. Main thread.
class TurnedPanel final : public QObject {
    Q_OBJECT

 public:
    TurnedPanel();
    ~TurnedPanel() override;

    /// Opens the panel; returns once it is painted.
    void open();
    /// Closes it; returns once its widgets are gone.
    void close();
    /// Presses one of the panel's buttons. Returns once the result is painted.
    void press(PanelAction action);
    /// Samples everything again. Returns once the new figures and every frame of the movement are
    /// painted.
    void tick();
    /// Number of painted frames of moving bars.
    int frames() const { return frames_; }

    bool eventFilter(QObject* object, QEvent* event) override;

 private:
    struct Machine;
    void waitUntilPainted();
    void showFrames();

    std::unique_ptr<Machine> machine_;
    bool isPainted_ = false;
    int frames_ = 0;
};

}  // namespace tarnwick::benchmarks
