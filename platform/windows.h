// SPDX-License-Identifier: MIT
// Windows with a title bar, and the order of the applications on the screen.
#pragma once

#include <memory>
#include <string>

namespace tarnwick::platform {

/// The content of a window, made by the toolkit of the same platform. The destructor stops all its
/// observers.
class View {
 public:
    virtual ~View() = default;
};

class WindowDelegate {
 public:
    virtual ~WindowDelegate() = default;

    /// The window is about to close. The delegate may destroy it in this call.
    virtual void windowWillClose() = 0;
};

/// Main thread. Closing only takes the window off the screen; its owner destroys it.
class Window {
 public:
    virtual ~Window() = default;

    virtual void setTitle(const std::string& title) = 0;
    /// Null for none. Destroys the view that was shown before.
    virtual void setContentView(std::unique_ptr<View> view) = 0;
    /// Null for no delegate. Requires: the delegate outlives the window.
    virtual void setDelegate(WindowDelegate* delegate) = 0;
    /// Moves the window to the middle of the screen.
    virtual void center() = 0;
    /// Shows the window before the program's others and gives it the keyboard.
    virtual void makeKeyAndOrderFront() = 0;
};

struct WindowOptions {
    /// Size of the content, points.
    int width = 0;
    int height = 0;
    bool isResizable = false;
    bool isMiniaturizable = false;
};

/// The windows of the application. Main thread.
class Windows {
 public:
    virtual ~Windows() = default;

    /// A window that the user can close, not yet on screen.
    virtual std::unique_ptr<Window> makeWindow(const WindowOptions& options) = 0;
    /// Puts the application in front of all others, even if the user is working with another one.
    virtual void activateIgnoringOtherApps() = 0;
};

}  // namespace tarnwick::platform
