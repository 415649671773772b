// SPDX-License-Identifier: MIT
// The stand-in for NVIDIA's management library, loaded by a test.
#pragma once

#include <dlfcn.h>
#include <stdexcept>

#include "tests/platform/linux/graphics/test_nvml.h"

namespace tarnwick::platform::testing {

/// Shares its state with the code under test, which loads the same file. Resets the state.
class LoadedTestNvml {
 public:
    LoadedTestNvml() : handle_(::dlopen(TARNWICK_TEST_NVML, RTLD_NOW | RTLD_LOCAL)) {
        if (handle_ == nullptr) {
            throw std::runtime_error(::dlerror());
        }
        using Access = TestNvmlState* (*)();
        state_ = reinterpret_cast<Access>(::dlsym(handle_, "testNvmlState"))();
        *state_ = {};
    }
    LoadedTestNvml(const LoadedTestNvml&) = delete;
    LoadedTestNvml& operator=(const LoadedTestNvml&) = delete;
    ~LoadedTestNvml() { ::dlclose(handle_); }

    TestNvmlState* operator->() const { return state_; }

 private:
    void* const handle_;
    TestNvmlState* state_ = nullptr;
};

}  // namespace tarnwick::platform::testing
