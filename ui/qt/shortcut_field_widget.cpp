// SPDX-License-Identifier: MIT
#include "ui/qt/shortcut_field_widget.h"

#include <QAccessible>
#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>
#include <utility>

#include "settings/key_codes.h"
#include "settings/shortcut.h"
#include "ui/qt/click_by_return.h"
#include "ui/qt/settings_buttons.h"
#include "ui/qt/settings_grid.h"
#include "ui/settings/shortcut_editor.h"

namespace tarnwick::qt {

namespace {

/// Between the field's edges and its text.
constexpr int kPadding = 8;

/// The flag of a modifier key, by its virtual key code. 0 for a modifier that does not count in
/// shortcuts; absent for a key that is not a modifier.
std::optional<std::int64_t> modifierOf(std::uint8_t virtualKeyCode) {
    switch (virtualKeyCode) {
        case key_code::kCommand:
        case key_code::kRightCommand:
            return modifier_flag::kCommand;
        case key_code::kShift:
        case key_code::kRightShift:
            return modifier_flag::kShift;
        case key_code::kOption:
        case key_code::kRightOption:
            return modifier_flag::kOption;
        case key_code::kControl:
        case key_code::kRightControl:
            return modifier_flag::kControl;
        case key_code::kCapsLock:
        case key_code::kFunction:
            return 0;
        default:
            return std::nullopt;
    }
}

std::int64_t flagsOf(Qt::KeyboardModifiers modifiers) {
    std::int64_t flags = 0;
    if (modifiers.testFlag(Qt::MetaModifier)) {
        flags |= modifier_flag::kCommand;
    }
    if (modifiers.testFlag(Qt::ShiftModifier)) {
        flags |= modifier_flag::kShift;
    }
    if (modifiers.testFlag(Qt::AltModifier)) {
        flags |= modifier_flag::kOption;
    }
    if (modifiers.testFlag(Qt::ControlModifier)) {
        flags |= modifier_flag::kControl;
    }
    return flags;
}

}  // namespace

ShortcutFieldWidget::ShortcutFieldWidget(ShortcutField& field, const Theme& theme,
                                         KeyCodes keyCodes, QWidget* parent)
    : QPushButton(parent),
      field_(field),
      theme_(theme),
      keyCodes_(std::move(keyCodes)),
      toldText_(shownText()) {
    setAccessibleName(ShortcutField::kAccessibilityLabel);
    setAccessibleDescription(ShortcutField::kAccessibilityHelp);
    setObjectName("shortcut");
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
    setAutoDefault(false);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    // Emitted for the space bar and for assistive technology.
    connect(this, &QAbstractButton::clicked, this, [this] { begin(); });
    field_.makeFirstResponder = [this] {
        if (!hasFocus()) {
            setFocus(Qt::MouseFocusReason);
        }
    };
    field_.onRefresh = [this] { follow(); };
}

ShortcutFieldWidget::~ShortcutFieldWidget() {
    field_.makeFirstResponder = nullptr;
    field_.onRefresh = nullptr;
}

QString ShortcutFieldWidget::shownText() const {
    return QString::fromStdString(field_.text().text);
}

bool ShortcutFieldWidget::showsShortcut() const {
    return !field_.text().isPlaceholder;
}

bool ShortcutFieldWidget::isRecording() const {
    return field_.isRecording();
}

/// Draws what the field shows now, and tells assistive technology of it.
void ShortcutFieldWidget::follow() {
    update();
    const bool isOther = std::exchange(wasRecording_, isRecording()) != isRecording();
    if (isOther && isRecording()) {
        qApp->installEventFilter(this);
    } else if (isOther) {
        qApp->removeEventFilter(this);
    }
    if (isOther) {
        QAccessible::State changed;
        changed.pressed = true;
        QAccessibleStateChangeEvent state(this, changed);
        QAccessible::updateAccessibility(&state);
    }
    const QString before = std::exchange(toldText_, shownText());
    if (before != toldText_) {
        QAccessibleTextUpdateEvent text(this, 0, before, toldText_);
        QAccessible::updateAccessibility(&text);
        QAccessibleEvent description(this, QAccessible::DescriptionChanged);
        QAccessible::updateAccessibility(&description);
    }
}

/// A click anywhere else cancels the recording, even if the focus stays. This happens after the
/// release, when the click has had its effect: the end of the recording hides the lines below the
/// field, and what the user presses would move away between press and release.
bool ShortcutFieldWidget::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseButtonRelease && watched != this && watched->isWidgetType()) {
        QMetaObject::invokeMethod(
            this, [this] { field_.resignFirstResponder(); }, Qt::QueuedConnection);
    }
    return QPushButton::eventFilter(watched, event);
}

QSize ShortcutFieldWidget::sizeHint() const {
    return {ShortcutEditor::kFieldWidth,
            std::max(ShortcutField::kHeight, theme_.style(FontRole::subheadline).lineHeight() + 6)};
}

int ShortcutFieldWidget::focusCorner() const {
    return settings_grid::kButtonCorner;
}

void ShortcutFieldWidget::begin() {
    if (!field_.isRecording()) {
        field_.mouseDown();
    }
}

void ShortcutFieldWidget::feed(const QKeyEvent& event) {
    const auto code = keyCodes_ ? keyCodes_(event.nativeScanCode()) : std::nullopt;
    if (!code || event.isAutoRepeat()) {
        return;
    }
    const bool isPress = event.type() == QEvent::KeyPress;
    std::int64_t flags = flagsOf(static_cast<const QInputEvent&>(event).modifiers());
    if (const auto own = modifierOf(*code)) {
        // Where the right Option key is AltGr, it chooses characters and is no modifier of
        // shortcuts: the key that follows has no flag of it either.
        const std::int64_t counted = event.key() == Qt::Key_AltGr ? 0 : *own;
        // The event may still hold the flags from before this key.
        flags = isPress ? flags | counted : flags & ~counted;
        field_.flagsChanged(flags);
    } else if (isPress) {
        field_.keyDown(*code, flags);
    }
}

bool ShortcutFieldWidget::event(QEvent* event) {
    if (field_.isRecording()) {
        switch (event->type()) {
            case QEvent::ShortcutOverride:
                event->accept();
                return true;
            case QEvent::KeyPress:
            case QEvent::KeyRelease:
                feed(*static_cast<QKeyEvent*>(event));
                event->accept();
                return true;
            default:
                break;
        }
    }
    return QPushButton::event(event);
}

void ShortcutFieldWidget::focusOutEvent(QFocusEvent* event) {
    field_.resignFirstResponder();
    QPushButton::focusOutEvent(event);
}

void ShortcutFieldWidget::keyPressEvent(QKeyEvent* event) {
    if (!clickByReturn(*this, *event)) {
        QPushButton::keyPressEvent(event);
    }
}

void ShortcutFieldWidget::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) {
        field_.mouseDown();
    }
}

// The press has already begun the recording.
void ShortcutFieldWidget::mouseReleaseEvent(QMouseEvent*) {}

void ShortcutFieldWidget::paintEvent(QPaintEvent*) {
    const TextStyle& style = theme_.style(FontRole::subheadline);
    const ShortcutFieldText& text = field_.text();
    const bool isRecording = field_.isRecording();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const qreal outline =
        isRecording ? settings_grid::kSelectedOutline : settings_grid::kCardOutline;
    painter.setPen(
        QPen(theme_.color(isRecording ? ColorRole::accent : ColorRole::hairline), outline));
    painter.setBrush(theme_.color(underMouse() && !isRecording ? ColorRole::controlHovered
                                                               : ColorRole::control));
    painter.drawRoundedRect(
        QRectF(rect()).adjusted(outline / 2, outline / 2, -outline / 2, -outline / 2),
        settings_grid::kButtonCorner - outline / 2, settings_grid::kButtonCorner - outline / 2);
    const QString shown = style.elided(QString::fromStdString(text.text), width() - 2 * kPadding);
    style.draw(painter,
               QPointF((width() - style.width(shown)) / 2,
                       (height() - style.lineHeight()) / 2 + style.ascent()),
               shown,
               theme_.color(text.isPlaceholder ? ColorRole::secondaryText : ColorRole::text));
}

}  // namespace tarnwick::qt
