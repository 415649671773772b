// SPDX-License-Identifier: MIT
// The events that assistive technology receives.
#pragma once

#include <QAccessible>
#include <QtGui/private/qguiapplication_p.h>
#include <algorithm>
#include <qpa/qplatformaccessibility.h>
#include <qpa/qplatformintegration.h>
#include <utility>
#include <vector>

namespace tarnwick::qt {

/// Records every event during its lifetime. Only one may exist at a time.
class AccessibleEvents {
 public:
    AccessibleEvents() : before_(QAccessible::installUpdateHandler(&note)) {
        listen(true);
        heard().clear();
    }
    AccessibleEvents(const AccessibleEvents&) = delete;
    AccessibleEvents& operator=(const AccessibleEvents&) = delete;
    ~AccessibleEvents() {
        listen(false);
        QAccessible::installUpdateHandler(before_);
    }

    /// The events of `object`, in order.
    std::vector<QAccessible::Event> of(const QObject* object) const {
        std::vector<QAccessible::Event> found;
        for (const auto& [source, type] : heard()) {
            if (source == object) {
                found.push_back(type);
            }
        }
        return found;
    }
    int count(const QObject* object, QAccessible::Event type) const {
        return static_cast<int>(
            std::count(heard().begin(), heard().end(), std::pair(object, type)));
    }

 private:
    using Heard = std::vector<std::pair<const QObject*, QAccessible::Event>>;

    /// Needed because no assistive technology listens on a screen without a display.
    static void listen(bool on) {
        QGuiApplicationPrivate::platformIntegration()->accessibility()->setActive(on);
        QAccessible::setActive(on);
    }
    static Heard& heard() {
        static Heard events;
        return events;
    }
    static void note(QAccessibleEvent* event) {
        heard().emplace_back(event->object(), event->type());
    }

    QAccessible::UpdateHandler before_;
};

}  // namespace tarnwick::qt
