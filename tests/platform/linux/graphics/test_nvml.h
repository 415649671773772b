// SPDX-License-Identifier: MIT
// A stand-in for NVIDIA's management library: a shared object with answers that a test sets.
#pragma once

namespace tarnwick::platform::testing {

/// The answers of the library, and the calls that it got.
struct TestNvmlState {
    int initializeResult = 0;
    int deviceResult = 0;
    int utilizationResult = 0;
    int nameResult = 0;
    int coreCountResult = 0;
    unsigned int utilization = 0;
    unsigned int coreCount = 0;
    const char* name = "";
    /// The only place where a card is found.
    const char* slot = "0000:01:00.0";

    int initialized = 0;
    int shutDown = 0;
    int devicesAsked = 0;
    int utilizationsAsked = 0;

    /// Connections to the driver that are open.
    int connections() const { return initialized - shutDown; }
};

}  // namespace tarnwick::platform::testing
