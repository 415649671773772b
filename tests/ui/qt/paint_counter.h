// SPDX-License-Identifier: MIT
// Records what is painted between two moments of a test.
#pragma once

#include <QApplication>
#include <QEvent>
#include <QPaintEvent>
#include <QRegion>
#include <QWidget>
#include <map>
#include <string>

namespace tarnwick::qt {

/// Counts the paint events of every widget, by its name or, without one, its class.
class PaintCounter final : public QObject {
 public:
    PaintCounter() { qApp->installEventFilter(this); }

    bool eventFilter(QObject* object, QEvent* event) override {
        if (event->type() == QEvent::Paint && object->isWidgetType()) {
            const std::string name = object->objectName().isEmpty()
                                         ? object->metaObject()->className()
                                         : object->objectName().toStdString();
            ++paints[name];
            regions[name] += static_cast<QPaintEvent*>(event)->region();
        }
        return false;
    }
    void clear() {
        paints.clear();
        regions.clear();
    }

    std::map<std::string, int> paints;
    /// The painted region of each widget, in its own coordinates.
    std::map<std::string, QRegion> regions;
};

}  // namespace tarnwick::qt
