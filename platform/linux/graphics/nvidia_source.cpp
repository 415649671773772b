#include "platform/linux/graphics/nvidia_source.h"

#include <utility>

namespace tarnwick::platform {

namespace {

constexpr double kSecondsAfterFailure = 60;

}  // namespace

NvidiaSource::NvidiaSource(Nvml& nvml, std::string slot) : nvml_(nvml), slot_(std::move(slot)) {}

std::optional<GpuUtilization> NvidiaSource::read(double now) {
    if (failedAt_ && now - *failedAt_ < kSecondsAfterFailure) {
        return std::nullopt;
    }
    if (!session_) {
        session_ = nvml_.open(slot_);
    }
    const std::optional<double> busy = session_ ? session_->utilization() : std::nullopt;
    if (!busy) {
        session_.reset();
        failedAt_ = now;
        return std::nullopt;
    }
    failedAt_.reset();
    return GpuUtilization{.device = *busy};
}

std::string NvidiaSource::modelName() {
    return session_ ? session_->name() : std::string();
}

std::optional<std::int64_t> NvidiaSource::coreCount() {
    return session_ ? session_->coreCount() : std::nullopt;
}

}  // namespace tarnwick::platform
