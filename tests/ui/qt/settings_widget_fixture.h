// SPDX-License-Identifier: MIT
// The content of the settings window on a screen without a display, over a store in memory.
#pragma once

#include <QAccessible>
#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/testing/manual_dispatch.h"
#include "platform/testing/memory_user_defaults.h"
#include "platform/testing/scripted_keyboard_layout.h"
#include "platform/testing/scripted_login_service.h"
#include "tests/ui/qt/settle.h"
#include "ui/qt/settings_widget.h"

namespace tarnwick::qt {

inline constexpr std::int64_t kCommand = 0x100000;
inline constexpr std::int64_t kShift = 0x20000;

class SettingsWidgetFixture : public ::testing::Test {
 protected:
    SettingsWidgetFixture() {
        // As if assistive technology listened from the beginning.
        QAccessible::setActive(true);
        make();
    }
    ~SettingsWidgetFixture() override {
        widget.reset();
        settle();
    }

    void make() {
        widget = std::make_unique<SettingsWidget>(
            settings, theme,
            SettingsViewEnvironment{
                dispatch,
                layout,
                {"1.4", "212"},
                [this](const std::string& address) { opened.push_back(address); }},
            // In these tests a scan code is the virtual key code plus 300; 999 belongs to no key.
            [](std::uint32_t code) -> std::optional<std::uint8_t> {
                if (code < 300 || code >= 428) {
                    return std::nullopt;
                }
                return static_cast<std::uint8_t>(code - 300);
            });
        widget->setFixedSize(520, 500);
        widget->show();
        widget->activateWindow();
        catchUp();
    }
    /// Runs the turns of the queue until all effects of earlier actions are there.
    void catchUp() {
        for (int turn = 0; turn < 2; ++turn) {
            dispatch.runMain();
            settle();
        }
    }
    void select(Tab tab) {
        widget->view().selectTab(tab);
        catchUp();
    }
    void storeShortcut(std::int64_t keyCode, std::int64_t modifiers) {
        settings.setShortcutKeyCode(keyCode);
        settings.setShortcutModifiers(modifiers);
        catchUp();
    }

    /// The widget of that name below the page that is shown, or the tabs.
    QWidget* find(const char* name, QWidget* below = nullptr) const {
        for (QWidget* each :
             (below != nullptr ? below : widget.get())->findChildren<QWidget*>(name)) {
            if (each->isVisible()) {
                return each;
            }
        }
        return nullptr;
    }
    template <class Widget>
    QList<Widget*> visible() const {
        QList<Widget*> found;
        for (Widget* each : widget->findChildren<Widget*>()) {
            if (each->isVisible()) {
                found << each;
            }
        }
        return found;
    }

    void mouse(QWidget* target, QEvent::Type type, QPointF position) {
        QMouseEvent event(type, position, target->mapToGlobal(position), Qt::LeftButton,
                          type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton,
                          Qt::NoModifier);
        QApplication::sendEvent(target, &event);
    }
    /// Clicks the widget at a place of `target`, as the pointer would.
    void clickAt(QWidget* target, QPoint position) {
        const QPoint inWindow = target->mapTo(widget.get(), position);
        QWidget* hit = widget->childAt(inWindow);
        ASSERT_NE(hit, nullptr);
        const QPoint there = hit->mapFrom(widget.get(), inWindow);
        mouse(hit, QEvent::MouseButtonPress, there);
        mouse(hit, QEvent::MouseButtonRelease, there);
        catchUp();
    }
    void click(QWidget* target) { clickAt(target, target->rect().center()); }
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
            QKeyEvent event(type, key, modifiers);
            QApplication::sendEvent(QApplication::focusWidget(), &event);
        }
        catchUp();
    }
    /// Presses or releases the key with that virtual key code.
    void nativeKey(QEvent::Type type, std::uint32_t code, Qt::KeyboardModifiers modifiers,
                   Qt::Key key = Qt::Key_unknown) {
        QKeyEvent event(type, key, modifiers, 300U + code, 0, 0);
        QApplication::sendEvent(QApplication::focusWidget(), &event);
        catchUp();
    }

    platform::testing::MemoryUserDefaults store;
    platform::testing::ScriptedLoginService loginService;
    platform::testing::ManualDispatch dispatch;
    platform::testing::ScriptedKeyboardLayout layout{{{37, "L"}, {40, "K"}}};
    UserSettings settings{store, loginService};
    std::vector<std::string> opened;
    Theme theme{false};
    std::unique_ptr<SettingsWidget> widget;
};

}  // namespace tarnwick::qt
