// SPDX-License-Identifier: MIT
// The control that records the global shortcut.
#pragma once

#include <QPushButton>
#include <cstdint>
#include <functional>
#include <optional>

#include "settings/shortcut_field.h"
#include "ui/qt/settings_focus_ring.h"
#include "ui/qt/theme.h"

namespace tarnwick::qt {

/// The virtual key code of a key by its native scan code; absent for keys without one. An empty
/// function if there is no keyboard: then nothing can be recorded.
using KeyCodes = std::function<std::optional<std::uint8_t>(std::uint32_t nativeScanCode)>;

/// Passes its events to a field and draws the field's text. While it records, it takes every key,
/// also keys that otherwise move the focus or trigger something. `field` must outlive the widget.
class ShortcutFieldWidget final : public QPushButton, public FocusShape {
    Q_OBJECT

 public:
    ShortcutFieldWidget(ShortcutField& field, const Theme& theme, KeyCodes keyCodes,
                        QWidget* parent);
    ~ShortcutFieldWidget() override;

    /// The text that it shows.
    QString shownText() const;
    /// False while it shows a request instead.
    bool showsShortcut() const;
    /// True while it waits for a shortcut.
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
    /// The text that assistive technology was last told.
    QString toldText_;
};

}  // namespace tarnwick::qt
