// The control in which the global shortcut is recorded.
#pragma once

#include <QPushButton>
#include <cstdint>
#include <functional>
#include <optional>

#include "settings/shortcut_field.h"
#include "ui/qt/settings_focus_ring.h"
#include "ui/qt/theme.h"

namespace tarnwick::qt {

/// The virtual key code of a key by its native scan code; absent for keys without one. Empty where
/// there is no keyboard: nothing can be recorded then.
using KeyCodes = std::function<std::optional<std::uint8_t>(std::uint32_t nativeScanCode)>;

/// Feeds a field with what happens to it and draws its text. `field` must outlive the widget. While
/// it records every key is the field's, also those that lead elsewhere otherwise.
class ShortcutFieldWidget final : public QPushButton, public FocusShape {
    Q_OBJECT

 public:
    ShortcutFieldWidget(ShortcutField& field, const Theme& theme, KeyCodes keyCodes,
                        QWidget* parent);
    ~ShortcutFieldWidget() override;

    /// The text on it.
    QString shownText() const;
    /// It waits for a shortcut.
    bool isRecording() const;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }
    QRect focusRect() const override { return rect(); }
    int focusCorner() const override;

 protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

 private:
    void feed(const QKeyEvent& event);
    void begin();
    void follow();

    ShortcutField& field_;
    const Theme& theme_;
    KeyCodes keyCodes_;
    bool wasRecording_ = false;
    /// As assistive technology heard of it last.
    QString toldText_;
};

}  // namespace tarnwick::qt
