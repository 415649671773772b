// SPDX-License-Identifier: MIT
// Guards against double clicks on something that the first press removes.
#pragma once

#include <QMouseEvent>
#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QWidget>
#include <optional>

namespace tarnwick::qt {

/// Blocks the second press of a double click unless it reaches the same widget as the first one.
/// The first press may have brought something else under the pointer, or left the pointer outside
/// the window. The desktop's settings say what is close enough in time and place. Main thread.
class DoubleClickGuard final : public QObject {
    Q_OBJECT

 public:
    /// `window` must outlive the guard.
    explicit DoubleClickGuard(const QWidget& window);

 protected:
    bool eventFilter(QObject* receiver, QEvent* event) override;

 private:
    struct Press {
        /// The widget that was hit. Null if the press was outside all of them, or the widget is
        /// gone.
        QPointer<QWidget> hit;
        /// In screen coordinates.
        QPoint place;
        /// Milliseconds of the clock that events are stamped by.
        quint64 time;
    };

    /// True if the press belongs to a double click and hit another widget than the press before it.
    bool hasMissed(const Press& press) const;

    const QWidget& window_;
    /// The last press that was let through.
    std::optional<Press> last_;
};

}  // namespace tarnwick::qt
