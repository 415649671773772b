// The battery's exact health from the system's hardware profiler.
#pragma once

#include <optional>
#include <string_view>

#include "platform/power_sources.h"
#include "services/process_runner.h"

namespace tarnwick {

using platform::HealthReading;

/// What the profiler's report about power says, as it prints it in JSON. Absent when the text is no
/// such report; a reading without figures when it is one and says nothing about health.
std::optional<HealthReading> decodeProfilerHealth(std::string_view json);

/// Runs the hardware profiler, which takes a second or more and never longer than three.
class ProfilerHealth final : public platform::BatteryHealth {
 public:
    explicit ProfilerHealth(ProcessRunner runner);

    std::optional<HealthReading> readHealth() override;

 private:
    ProcessRunner runner_;
};

}  // namespace tarnwick
