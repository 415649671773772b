// SPDX-License-Identifier: MIT
// A page of the panel without its window.
#pragma once

#include <QApplication>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <gtest/gtest.h>
#include <vector>

#include "tests/ui/panel/detail_fixtures.h"
#include "tests/ui/panel/home_fixtures.h"
#include "tests/ui/qt/settle.h"
#include "ui/qt/panel_view.h"
#include "ui/qt/tool_tip.h"

namespace tarnwick::qt {

class PanelViewTest : public ::testing::Test {
 protected:
    PanelViewTest() { view.setObjectName("view"); }

    void show(const Page& page) {
        view.setPage(page);
        view.show();
        settle();
    }
    void show(const HomePageInputs& inputs) { show(homePage(inputs, formatter)); }
    void show(const PerformanceDetailInputs& inputs) {
        show(performanceDetailPage(inputs, formatter));
    }
    void show(const MemoryDetailInputs& inputs) { show(memoryDetailPage(inputs, formatter)); }
    QWidget* find(const char* name) const { return view.findChild<QWidget*>(name); }
    QList<BlockWidget*> blocks() const {
        return view.findChildren<BlockWidget*>(QString(), Qt::FindDirectChildrenOnly);
    }
    /// The tool tip when the pointer rests over the middle of a widget.
    QString toolTip(QWidget* widget) const {
        hideToolTip();
        const QPoint position = widget->rect().center();
        QHelpEvent help(QEvent::ToolTip, position, widget->mapToGlobal(position));
        QApplication::sendEvent(widget, &help);
        return shownToolTip();
    }
    void press(QWidget* widget, Qt::Key key) const {
        QKeyEvent down(QEvent::KeyPress, key, Qt::NoModifier);
        QApplication::sendEvent(widget, &down);
        QKeyEvent up(QEvent::KeyRelease, key, Qt::NoModifier);
        QApplication::sendEvent(widget, &up);
    }
    void click(QWidget* widget) const {
        const QPointF position = widget->rect().center();
        for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
            QMouseEvent event(type, position, widget->mapToGlobal(position), Qt::LeftButton,
                              type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton,
                              Qt::NoModifier);
            QApplication::sendEvent(widget, &event);
        }
    }

    Theme theme;
    testing::PlainByteCountFormatter formatter;
    std::vector<PanelAction> pressed;
    PanelView view{theme, [this](PanelAction action) { pressed.push_back(action); }, nullptr};
};

}  // namespace tarnwick::qt
