// SPDX-License-Identifier: MIT
#include "ui/qt/accessible_application.h"

#include <QAccessible>
#include <QApplication>
#include <QWidget>

// After the header above, because this one needs it and does not include it.
#include <QtGui/qaccessibleobject.h>

namespace tarnwick::qt {
namespace {

/// The open pop-ups that belong to no other window.
QList<QAccessibleInterface*> popUps() {
    QList<QAccessibleInterface*> found;
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (window->windowType() == Qt::Popup && window->parentWidget() == nullptr &&
            window->isVisible()) {
            found.append(QAccessible::queryAccessibleInterface(window));
        }
    }
    return found;
}

class AccessibleApplication final : public QAccessibleApplication {
 public:
    // Of the program as people know it; what the toolkit takes is the windows' class.
    QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Name ? "Tarnwick" : QAccessibleApplication::text(kind);
    }
    int childCount() const override {
        return QAccessibleApplication::childCount() + static_cast<int>(popUps().size());
    }
    QAccessibleInterface* child(int index) const override {
        const int windows = QAccessibleApplication::childCount();
        return index < windows ? QAccessibleApplication::child(index)
                               : popUps().value(index - windows);
    }
    int indexOfChild(const QAccessibleInterface* child) const override {
        const int index = QAccessibleApplication::indexOfChild(child);
        const auto place = popUps().indexOf(child);
        return index >= 0 || place < 0
                   ? index
                   : QAccessibleApplication::childCount() + static_cast<int>(place);
    }
};

QAccessibleInterface* makeApplication(const QString&, QObject* object) {
    return object != nullptr && object == QCoreApplication::instance() ? new AccessibleApplication()
                                                                       : nullptr;
}

}  // namespace

void listPopUpsForScreenReaders() {
    QAccessible::installFactory(makeApplication);
}

}  // namespace tarnwick::qt
