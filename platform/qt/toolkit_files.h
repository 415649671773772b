// SPDX-License-Identifier: MIT
// What the toolkit reads from disks, which may hang, while it is used. Main thread.
#pragma once

#include <QObject>
#include <functional>
#include <memory>

#include "platform/dispatch.h"

namespace tarnwick::qt {

/// Keeps the fonts that were found at the start. By itself the font library looks for changes of
/// its folders when a font is asked for, also below the home; the toolkit makes no use of what it
/// finds.
void stopLookingForFonts();

/// Reads the pictures of the pointer that windows show; on X11 the toolkit then keeps them. Their
/// theme is looked for below the home, too. Takes a millisecond or two.
void loadPointers();

/// Shows windows. Under a compositor the toolkit reads below the home for the first one, and when
/// the pointer first enters one, and keeps what it has read. Until then a window is shown only once
/// the home has answered, which is asked in the background.
class FirstWindows final : public QObject {
 public:
    /// Requires: `dispatch` outlives this object.
    explicit FirstWindows(platform::Dispatch& dispatch);

    /// Calls `window`, which shows one: at once or on a later turn; never, where the home takes
    /// seconds to answer or another window waits for it already.
    void show(const std::function<void()>& window);
    /// Whether show() calls at once.
    bool areRead() const { return areRead_; }

    bool eventFilter(QObject* watched, QEvent* event) override;

 private:
    platform::Dispatch& dispatch_;
    bool areRead_ = false;
    bool isAsking_ = false;
    /// For calls that come when this object may be gone.
    const std::shared_ptr<FirstWindows*> self_ = std::make_shared<FirstWindows*>(this);
};

/// Calls `open` on a later turn, once the folders of programs have answered: the toolkit looks for
/// the one that opens an address there, and some of them lie below the home. Never, where they take
/// seconds to answer. Requires: `dispatch` lives as long as the process.
void afterFoldersOfPrograms(platform::Dispatch& dispatch, std::function<void()> open);

}  // namespace tarnwick::qt
