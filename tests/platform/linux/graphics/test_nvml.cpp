// SPDX-License-Identifier: MIT
#include "tests/platform/linux/graphics/test_nvml.h"

#include <cstring>
#include <sched.h>

using tarnwick::platform::testing::TestNvmlState;

namespace {

TestNvmlState state;

}  // namespace

extern "C" {

struct TestUtilization {
    unsigned int processor;
    unsigned int memory;
};

TestNvmlState* testNvmlState() {
    return &state;
}

int nvmlInit_v2() {
    // Callers that do not take turns get in between.
    ::sched_yield();
    state.initialized += state.initializeResult == 0;
    return state.initializeResult;
}

#ifndef TARNWICK_TEST_NVML_WITHOUT_SHUTDOWN
int nvmlShutdown() {
    ++state.shutDown;
    return 0;
}
#endif

int nvmlDeviceGetHandleByPciBusId_v2(const char* slot, void** device) {
    ++state.devicesAsked;
    if (state.connections() == 0) {
        return 1;
    }
    if (std::strcmp(slot, state.slot) != 0) {
        return 6;
    }
    *device = &state;
    return state.deviceResult;
}

int nvmlDeviceGetUtilizationRates(void* device, TestUtilization* rates) {
    ++state.utilizationsAsked;
    if (device != &state || state.connections() == 0) {
        return 1;
    }
    *rates = {state.utilization, 99};
    return state.utilizationResult;
}

#ifndef TARNWICK_TEST_NVML_OLD
int nvmlDeviceGetName(void*, char* text, unsigned int size) {
    std::memset(text, 'x', size);
    std::strncpy(text, state.name, size);
    return state.nameResult;
}

int nvmlDeviceGetNumGpuCores(void*, unsigned int* count) {
    *count = state.coreCount;
    return state.coreCountResult;
}
#endif
}
