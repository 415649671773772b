// SPDX-License-Identifier: MIT
#include "ui/qt/settings_accessibility.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <algorithm>

#include "ui/qt/settings_buttons.h"
#include "ui/qt/settings_cards.h"
#include "ui/qt/settings_mode_card.h"
#include "ui/qt/settings_tab_bar.h"
#include "ui/qt/shortcut_field_widget.h"
#include "ui/qt/threshold_slider_widget.h"

namespace tarnwick::qt {

namespace {

/// A press is a click at once. The toolkit's own interfaces would change what a switch shows
/// without telling the program.
class AccessibleButton : public QAccessibleWidget {
 public:
    AccessibleButton(QAbstractButton& button, QAccessible::Role role)
        : QAccessibleWidget(&button, role), button_(button) {}

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        if (role() == QAccessible::PageTab) {
            state.selectable = true;
            state.selected = button_.isChecked();
        } else if (button_.isCheckable()) {
            state.checkable = true;
            state.checked = button_.isChecked();
        }
        return state;
    }
    QStringList actionNames() const override {
        return {hasToggle() ? toggleAction() : pressAction(), setFocusAction()};
    }
    void doAction(const QString& action) override {
        if (action == pressAction() || (hasToggle() && action == toggleAction())) {
            button_.click();
            return;
        }
        QAccessibleWidget::doAction(action);
    }

 private:
    bool hasToggle() const { return role() == QAccessible::CheckBox; }

    QAbstractButton& button_;
};

/// A button with a readable text: the shortcut, or the request to press one.
class AccessibleShortcutField final : public AccessibleButton, public QAccessibleTextInterface {
 public:
    explicit AccessibleShortcutField(ShortcutFieldWidget& field)
        : AccessibleButton(field, QAccessible::PushButton), field_(field) {}

    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::TextInterface ? static_cast<QAccessibleTextInterface*>(this)
                                                  : AccessibleButton::interface_cast(type);
    }
    QAccessible::State state() const override {
        QAccessible::State state = AccessibleButton::state();
        state.pressed = field_.isRecording();
        return state;
    }
    QString text(QAccessible::Text kind) const override {
        switch (kind) {
            case QAccessible::Value:
                return field_.shownText();
            // Some screen readers pass over the value of a button. While it records, the help would
            // be said again with each key.
            case QAccessible::Description:
                return field_.isRecording() ? field_.shownText()
                       : field_.showsShortcut()
                           ? field_.shownText() + ". " + field_.accessibleDescription()
                           : field_.accessibleDescription();
            case QAccessible::Help:
                return field_.accessibleDescription();
            default:
                return AccessibleButton::text(kind);
        }
    }

    QString text(int start, int end) const override {
        return field_.shownText().mid(start, std::max(0, end - start));
    }
    int characterCount() const override { return static_cast<int>(field_.shownText().size()); }
    // Nothing in it can be selected or pointed at.
    void selection(int, int* start, int* end) const override { *start = *end = 0; }
    int selectionCount() const override { return 0; }
    void addSelection(int, int) override {}
    void removeSelection(int) override {}
    void setSelection(int, int, int) override {}
    int cursorPosition() const override { return 0; }
    void setCursorPosition(int) override {}
    QRect characterRect(int) const override { return rect(); }
    int offsetAtPoint(const QPoint&) const override { return -1; }
    void scrollToSubstring(int, int) override {}
    QString attributes(int, int* start, int* end) const override {
        *start = 0;
        *end = characterCount();
        return {};
    }

 private:
    ShortcutFieldWidget& field_;
};

/// Each thumb is a slider of its own.
class AccessibleThumb final : public QAccessibleWidget, public QAccessibleValueInterface {
 public:
    explicit AccessibleThumb(ThresholdThumbWidget& thumb)
        : QAccessibleWidget(&thumb, QAccessible::Slider), thumb_(thumb) {}

    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ValueInterface ? static_cast<QAccessibleValueInterface*>(this)
                                                   : QAccessibleWidget::interface_cast(type);
    }
    QString text(QAccessible::Text kind) const override {
        switch (kind) {
            case QAccessible::Name:
                return QString::fromStdString(slider().accessibilityLabel(thumb_.thumb()));
            // All bridges pass on the description, but some do not pass on the text of the value.
            case QAccessible::Value:
            case QAccessible::Description:
                return QString::fromStdString(slider().accessibilityValue(thumb_.thumb()));
            default:
                return QAccessibleWidget::text(kind);
        }
    }

    QVariant currentValue() const override { return slider().value(thumb_.thumb()); }
    void setCurrentValue(const QVariant& value) override {
        bool isNumber = false;
        const double percent = value.toDouble(&isNumber);
        if (isNumber) {
            thumb_.setValue(percent);
        }
    }
    QVariant minimumValue() const override { return slider().range(thumb_.thumb()).lower; }
    QVariant maximumValue() const override { return slider().range(thumb_.thumb()).upper; }
    QVariant minimumStepSize() const override { return 1.0; }

    QStringList actionNames() const override {
        return {increaseAction(), decreaseAction(), setFocusAction()};
    }
    void doAction(const QString& action) override {
        if (action == increaseAction()) {
            thumb_.adjust(DualThresholdSlider::Adjustment::increment);
        } else if (action == decreaseAction()) {
            thumb_.adjust(DualThresholdSlider::Adjustment::decrement);
        } else {
            QAccessibleWidget::doAction(action);
        }
    }

 private:
    const DualThresholdSlider& slider() const { return thumb_.slider(); }

    ThresholdThumbWidget& thumb_;
};

/// Groups both thumbs: the lower threshold first, whichever thumb is drawn on top.
class AccessibleThresholds final : public QAccessibleWidget {
 public:
    explicit AccessibleThresholds(ThresholdSliderWidget& slider)
        : QAccessibleWidget(&slider, QAccessible::Grouping), slider_(slider) {}

    int childCount() const override { return 2; }
    QAccessibleInterface* child(int index) const override {
        ThresholdThumbWidget* const thumbs[] = {&slider_.normal(), &slider_.high()};
        return index >= 0 && index < 2 ? QAccessible::queryAccessibleInterface(thumbs[index])
                                       : nullptr;
    }
    int indexOfChild(const QAccessibleInterface* wanted) const override {
        return child(0) == wanted ? 0 : child(1) == wanted ? 1 : -1;
    }

 private:
    ThresholdSliderWidget& slider_;
};

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
    if (auto* tab = qobject_cast<SettingsTabButton*>(object)) {
        return new AccessibleButton(*tab, QAccessible::PageTab);
    }
    if (auto* card = qobject_cast<DisplayModeCardWidget*>(object)) {
        return new AccessibleButton(*card, QAccessible::RadioButton);
    }
    if (auto* toggle = qobject_cast<SettingsSwitchWidget*>(object)) {
        return new AccessibleButton(*toggle, QAccessible::CheckBox);
    }
    if (auto* field = qobject_cast<ShortcutFieldWidget*>(object)) {
        return new AccessibleShortcutField(*field);
    }
    if (auto* button = qobject_cast<SettingsButton*>(object)) {
        return new AccessibleButton(*button, button->kind() == SettingsButton::Kind::link
                                                 ? QAccessible::Link
                                                 : QAccessible::PushButton);
    }
    if (auto* bar = qobject_cast<SettingsTabBar*>(object)) {
        return new QAccessibleWidget(bar, QAccessible::PageTabList);
    }
    if (auto* pill = qobject_cast<ThresholdPillWidget*>(object)) {
        return new QAccessibleWidget(pill, QAccessible::StaticText);
    }
    if (auto* thumb = qobject_cast<ThresholdThumbWidget*>(object)) {
        return new AccessibleThumb(*thumb);
    }
    if (auto* slider = qobject_cast<ThresholdSliderWidget*>(object)) {
        return new AccessibleThresholds(*slider);
    }
    return nullptr;
}

}  // namespace

void installSettingsAccessibility() {
    [[maybe_unused]] static const bool once = [] {
        QAccessible::installFactory(makeInterface);
        return true;
    }();
}

}  // namespace tarnwick::qt
