// Double clicks on what a press takes away.
#pragma once

#include <QMouseEvent>
#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QWidget>
#include <optional>

namespace tarnwick::qt {

/// Lets the second press of a double click reach what the first one hit, or nothing: the first one
/// may have brought something else under the pointer, or left the pointer outside the window. What
/// is close enough in time and place is the desktop's to say. Main thread.
class DoubleClickGuard final : public QObject {
    Q_OBJECT

 public:
    /// `window` outlives the guard.
    explicit DoubleClickGuard(const QWidget& window);

 protected:
    bool eventFilter(QObject* receiver, QEvent* event) override;

 private:
    struct Press {
        /// Null for what is outside, or gone.
        QPointer<QWidget> hit;
        /// On the screen.
        QPoint place;
        /// Milliseconds of the clock that events are stamped by.
        quint64 time;
    };

    /// What the press has hit is another than the press just before it.
    bool hasMissed(const Press& press) const;

    const QWidget& window_;
    /// The last one that was let through.
    std::optional<Press> last_;
};

}  // namespace tarnwick::qt
