// SPDX-License-Identifier: MIT
// A widget as the content of a window.
#pragma once

#include <QWidget>
#include <memory>
#include <utility>

#include "platform/windows.h"

namespace tarnwick::qt {

/// Every view that a TitledWindow is given is one of these. Main thread.
class WidgetView : public platform::View {
 public:
    explicit WidgetView(std::unique_ptr<QWidget> widget) : widget_(std::move(widget)) {}

    /// Destroyed with the view, even while it is in a window.
    QWidget* widget() const { return widget_.get(); }

 private:
    std::unique_ptr<QWidget> widget_;
};

}  // namespace tarnwick::qt
