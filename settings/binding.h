// A value that lives elsewhere.
#pragma once

#include <functional>

namespace tarnwick {

/// Reads the value and writes it, wherever it is kept.
template <class T>
struct Binding {
    std::function<T()> get;
    std::function<void(T)> set;
};

}  // namespace tarnwick
