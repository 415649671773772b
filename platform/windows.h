// Windows with a title bar, and the application's place before the others.
#pragma once

#include <memory>
#include <string>

namespace tarnwick::platform {

/// What a window shows, made by the toolkit of the same platform. Destroying it ends whatever it
/// observes.
class View {
 public:
    virtual ~View() = default;
};

class WindowDelegate {
 public:
    virtual ~WindowDelegate() = default;

    /// The window is about to close and may be destroyed in here.
    virtual void windowWillClose() = 0;
};

/// Main thread. Closing takes a window off the screen and no more: whoever made it destroys it.
class Window {
 public:
    virtual ~Window() = default;

    virtual void setTitle(const std::string& title) = 0;
    /// Null for none. Destroys the view that was shown before.
    virtual void setContentView(std::unique_ptr<View> view) = 0;
    /// Null for none; must outlive the window otherwise.
    virtual void setDelegate(WindowDelegate* delegate) = 0;
    /// Moves the window to the middle of the screen.
    virtual void center() = 0;
    /// Shows the window before the program's others and gives it the keyboard.
    virtual void makeKeyAndOrderFront() = 0;
};

struct WindowOptions {
    /// Of the content, points.
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
    /// Brings the application before all others, whichever the user is working with.
    virtual void activateIgnoringOtherApps() = 0;
};

}  // namespace tarnwick::platform
