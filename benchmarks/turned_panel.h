// The whole panel on a machine that is made up, in time that is turned by hand.
#pragma once

#include <QObject>
#include <QRect>
#include <memory>

#include "ui/panel/menu_bar_view.h"

namespace tarnwick::benchmarks {

/// From the samplers' answers to the painted widgets, without a display. Every figure differs at
/// each refresh, and the processor is busy enough for the list of processes. Main thread.
class TurnedPanel final : public QObject {
    Q_OBJECT

 public:
    TurnedPanel();
    ~TurnedPanel() override;

    /// Opens the panel; returns once it is painted.
    void open();
    /// Closes it; returns once its widgets are gone.
    void close();
    /// A press on one of its buttons; returns once what follows is painted.
    void press(PanelAction action);
    /// Has everything sampled anew; returns once the new figures are painted and every frame of
    /// what then moves.
    void tick();
    /// How many frames of moving bars have been painted.
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
