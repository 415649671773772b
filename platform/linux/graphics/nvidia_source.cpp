// SPDX-License-Identifier: MIT
#include <utility>

#include "platform/linux/graphics/gpu_source.h"
#include "platform/linux/graphics/nvml.h"

namespace tarnwick::platform {

namespace {

constexpr double kSecondsAfterFailure = 60;

class NvidiaSource final : public GpuSource {
 public:
    NvidiaSource(Nvml& nvml, std::string slot) : nvml_(nvml), slot_(std::move(slot)) {}

    std::optional<GpuUtilization> read(double now) override {
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
    std::string modelName() override { return session_ ? session_->name() : std::string(); }
    std::optional<std::int64_t> coreCount() override {
        return session_ ? session_->coreCount() : std::nullopt;
    }
    void rest() override { session_.reset(); }

 private:
    Nvml& nvml_;
    const std::string slot_;
    std::unique_ptr<Nvml::Session> session_;
    std::optional<double> failedAt_;
};

}  // namespace

std::unique_ptr<GpuSource> makeNvidiaSource(Nvml& nvml, std::string slot) {
    return std::make_unique<NvidiaSource>(nvml, std::move(slot));
}

}  // namespace tarnwick::platform
