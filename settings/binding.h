// SPDX-License-Identifier: MIT
// Access to a value that is kept elsewhere.
#pragma once

#include <functional>

namespace tarnwick {

/// Reads and writes a value that is kept elsewhere.
template <class T>
struct Binding {
    std::function<T()> get;
    std::function<void(T)> set;
};

}  // namespace tarnwick
