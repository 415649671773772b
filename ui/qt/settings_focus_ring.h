// Marks the control of the settings window that has the keyboard's focus.
#pragma once

#include <QPointer>
#include <QWidget>

#include "ui/qt/theme.h"

namespace tarnwick::qt {

/// What can have the keyboard's focus tells where it is seen.
class FocusShape {
 public:
    virtual ~FocusShape() = default;

    /// In the control's own coordinates.
    virtual QRect focusRect() const = 0;
    /// Radius of its corners.
    virtual int focusCorner() const = 0;
};

/// A ring around the focused control among the descendants of its parent, above all of them. There
/// only while the focus came by a key.
class SettingsFocusRing final : public QWidget {
    Q_OBJECT

 public:
    SettingsFocusRing(const Theme& theme, QWidget* parent);

    /// Looks after every FocusShape that is below the parent by now.
    void watchControls();

 protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

 private:
    void follow();

    const Theme& theme_;
    QPointer<QWidget> control_;
    qreal corner_ = 0;
};

}  // namespace tarnwick::qt
