// SPDX-License-Identifier: MIT
#include "platform/testing/scripted_windows.h"

#include <cstddef>
#include <utility>

namespace tarnwick::platform::testing {

class ScriptedWindows::ScriptedWindow final : public Window {
 public:
    ScriptedWindow(ScriptedWindows& windows, std::size_t index)
        : windows_(windows), index_(index) {}
    ScriptedWindow(const ScriptedWindow&) = delete;
    ScriptedWindow& operator=(const ScriptedWindow&) = delete;
    ~ScriptedWindow() override {
        record("gone");
        windows_.delegates[index_] = nullptr;
        --windows_.living_;
    }

    void setTitle(const std::string& title) override { record("title", " " + title); }
    void setContentView(std::unique_ptr<View> view) override {
        record(view ? "content" : "no content");
        view_ = std::move(view);
    }
    void setDelegate(WindowDelegate* delegate) override {
        record(delegate != nullptr ? "delegate" : "no delegate");
        windows_.delegates[index_] = delegate;
    }
    void center() override { record("center"); }
    void makeKeyAndOrderFront() override { record("front"); }

 private:
    void record(const std::string& operation, const std::string& detail = {}) {
        windows_.calls.add(operation + " " + std::to_string(index_ + 1) + detail);
    }

    ScriptedWindows& windows_;
    std::size_t index_;
    std::unique_ptr<View> view_;
};

std::unique_ptr<Window> ScriptedWindows::makeWindow(const WindowOptions& windowOptions) {
    options.push_back(windowOptions);
    delegates.push_back(nullptr);
    ++living_;
    calls.add("make " + std::to_string(options.size()));
    return std::make_unique<ScriptedWindow>(*this, options.size() - 1);
}

void ScriptedWindows::closeByUser(int number) {
    if (WindowDelegate* delegate = delegates.at(static_cast<std::size_t>(number - 1))) {
        delegate->windowWillClose();
    }
}

}  // namespace tarnwick::platform::testing
