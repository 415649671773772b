// SPDX-License-Identifier: MIT
// A threshold that is dragged in the settings window, over a store on the disk.
#pragma once

#include <memory>

namespace tarnwick::benchmarks {

/// From the pointer to the painted widgets and the written file, without a display. The file lies
/// in a private folder. Main thread.
class SettingsDrag {
 public:
    SettingsDrag();
    SettingsDrag(const SettingsDrag&) = delete;
    SettingsDrag& operator=(const SettingsDrag&) = delete;
    ~SettingsDrag();

    /// Moves the pointer far enough to change the value. Returns once the value is on the disk and
    /// everything that follows is painted.
    void change();
    /// Moves the pointer, but not far enough to change the value.
    void rest();
    /// The stored value of the dragged threshold, percent.
    double stored() const;

 private:
    struct Window;

    std::unique_ptr<Window> window_;
    int changes_ = 0;
    double percent_ = 0;
};

}  // namespace tarnwick::benchmarks
