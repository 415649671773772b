// SPDX-License-Identifier: MIT
// Accelerators with answers from a test.
#pragma once

#include <string>
#include <vector>

#include "platform/accelerators.h"
#include "platform/testing/answers.h"

namespace tarnwick::platform::testing {

/// Until a test says otherwise there is no accelerator. Any thread.
class ScriptedAccelerators final : public Accelerators {
 public:
    /// One member for each operation.
    struct {
        Answers<MatchingServices> matchingServices{MatchingServices{}};
    } answers;

    /// Names of the operations called, in order.
    std::vector<std::string> calls() const { return calls_.all(); }
    void clearCalls() { calls_.clear(); }

    MatchingServices matchingServices() override;

 private:
    CallRecord calls_;
};

}  // namespace tarnwick::platform::testing
