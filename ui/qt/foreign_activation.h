// SPDX-License-Identifier: MIT
// Notices when the user turns to another program while a pop-up is open.
#pragma once

#include <QAbstractNativeEventFilter>
#include <QByteArray>
#include <cstdint>
#include <functional>

namespace tarnwick::qt {

/// On X11 a pop-up never has the focus and so cannot lose it. Instead this follows the window that
/// the window manager calls active. Without X11 it does nothing. Main thread.
class ForeignActivation final : public QAbstractNativeEventFilter {
 public:
    /// `activated` is called whenever a window of another program becomes the active one, except
    /// the window that was active when this object was made.
    explicit ForeignActivation(std::function<void()> activated);
    ~ForeignActivation() override;
    ForeignActivation(const ForeignActivation&) = delete;
    ForeignActivation& operator=(const ForeignActivation&) = delete;

    bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;

 private:
    std::uint32_t activeWindow() const;

    std::function<void()> activated_;
    std::uint32_t root_ = 0;
    std::uint32_t property_ = 0;
    std::uint32_t activeAtFirst_ = 0;
};

}  // namespace tarnwick::qt
