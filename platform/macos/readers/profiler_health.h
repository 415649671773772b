// SPDX-License-Identifier: MIT
// The battery's exact health from the system's hardware profiler.
#pragma once

#include <optional>
#include <string_view>

#include "platform/power_sources.h"
#include "services/process_runner.h"

namespace tarnwick {

using platform::HealthReading;

/// The health in the profiler's JSON report about power. Absent if the text is not such a report; a
/// reading without figures if it is one but contains nothing about health.
std::optional<HealthReading> decodeProfilerHealth(std::string_view json);

/// Runs the hardware profiler, which takes a second or more and never longer than three.
class ProfilerHealth final : public platform::BatteryHealth {
 public:
    explicit ProfilerHealth(ProcessRunner runner);

    std::optional<HealthReading> readHealth() override;
    /// The time of the profiler, and some to start and to end it.
    double longestReading() const override { return 4; }

 private:
    ProcessRunner runner_;
};

}  // namespace tarnwick
