// SPDX-License-Identifier: MIT
// Where the live text goes, by the program that shows the tray.
#pragma once

#include <string_view>

namespace tarnwick::platform {

enum class TextPlace {
    /// The host draws every picture as a square icon: the text is in title and tool tip only.
    toolTip,
    /// The host draws a wide picture whole: icon and text in one picture.
    picture,
    /// The host shows a label beside the icon.
    label,
};

/// What the host fetches after a signal. Each fetch wakes both programs, so the item announces
/// nothing that the host does not use.
enum class HostFetches {
    /// What the signal names.
    named,
    /// Only what the signal names; the title is unused, because the host shows the tool tip.
    namedButTitle,
    /// Everything after any signal.
    everything,
};

struct TrayPresentation {
    TextPlace text = TextPlace::toolTip;
    /// The host draws no pixmaps: the icon must be a file, its path in the icon's name.
    bool iconFromFile = false;
    /// Height in pixels of the one wide picture that the host needs; 0 if `text` is not `picture`.
    int pictureHeight = 0;
    HostFetches fetches = HostFetches::named;
    /// The host marks an item that needs attention, or brings it out from among hidden ones.
    bool marksAttention = false;

    bool operator==(const TrayPresentation&) const = default;
};

/// How to present the item to the program that owns the StatusNotifier watcher. `program` is the
/// file name of its executable; an unknown one gets what every host draws: a square icon.
TrayPresentation trayPresentation(std::string_view program);

}  // namespace tarnwick::platform
