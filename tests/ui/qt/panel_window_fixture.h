// SPDX-License-Identifier: MIT
// The panel over a stats manager on scripted samplers.
#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollArea>
#include <gtest/gtest.h>
#include <memory>
#include <string>

#include "tests/core/stats_manager_fixture.h"
#include "tests/ui/panel/home_fixtures.h"
#include "tests/ui/qt/settle.h"
#include "ui/qt/panel_window.h"

namespace tarnwick::qt {

/// Counts how often it is asked.
class CountingFormatter final : public platform::ByteCountFormatter {
 public:
    std::string stringFromByteCount(std::int64_t byteCount,
                                    platform::CountStyle style) const override {
        ++calls;
        return formatter_.stringFromByteCount(byteCount, style);
    }

    mutable int calls = 0;

 private:
    testing::PlainByteCountFormatter formatter_;
};

class PanelWindowTest : public testing::StatsManagerTest {
 protected:
    PanelWindowTest()
        : manager(makeSettled()),
          view(*manager,
               {.showSettings = {}, .openActivityMonitor = {}, .quit = [this] { ++quits; }},
               {manual, formatter}),
          window(std::make_unique<PanelWindow>(view, theme, manual)) {}

    ~PanelWindowTest() override {
        window.reset();
        qt::settle();
    }

    static QWidget* popup() {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (widget->objectName() == "panel") {
                return widget;
            }
        }
        return nullptr;
    }
    void open() {
        window->open(anchor);
        qt::settle();
    }
    static QRect panelPlace() {
        const auto* panel = popup()->findChild<QScrollArea*>();
        return {panel->mapToGlobal(QPoint()), panel->size()};
    }
    static QWidget* find(const char* name) { return popup()->findChild<QWidget*>(name); }
    static void key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QWidget* focused = QApplication::focusWidget();
        QWidget* receiver = focused != nullptr ? focused : popup();
        for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
            QKeyEvent event(type, key, modifiers);
            QApplication::sendEvent(receiver, &event);
        }
        qt::settle();
    }
    static std::string focused() {
        const QWidget* widget = QApplication::focusWidget();
        return widget == nullptr ? "" : widget->objectName().toStdString();
    }
    static void click(const char* name) {
        popup()->findChild<QAbstractButton*>(name)->click();
        qt::settle();
    }
    static bool isOnScreen(const QWidget* widget) {
        return panelPlace().contains(QRect(widget->mapToGlobal(QPoint()), widget->size()));
    }
    static void sendMouse(QEvent::Type type, const QPoint& position) {
        const bool isDown = type == QEvent::MouseButtonPress;
        QMouseEvent event(type, position, popup()->mapToGlobal(position), Qt::LeftButton,
                          isDown ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(popup(), &event);
        qt::settle();
    }
    /// A press and a release at a point of the pop-up's own coordinates.
    static void pressAt(const QPoint& position) {
        sendMouse(QEvent::MouseButtonPress, position);
        sendMouse(QEvent::MouseButtonRelease, position);
    }

    Theme theme;
    CountingFormatter formatter;
    std::unique_ptr<StatsManager> manager;
    int quits = 0;
    MenuBarView view;
    std::unique_ptr<PanelWindow> window;
    const QRect anchor{300, 2, 22, 22};
};

}  // namespace tarnwick::qt
