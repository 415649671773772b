// SPDX-License-Identifier: MIT
#include "platform/linux/graphics/graphics_card.h"

#include <string_view>
#include <utility>

#include "platform/linux/files/kept_file.h"
#include "platform/linux/graphics/graphics_names.h"

namespace tarnwick::platform {

namespace {

/// Percent. Below this the card counts as idle: the reading itself causes some work.
constexpr double kIdleBelow = 1;
/// Extra seconds, because the card's own timer starts after the answer and fires a little late.
constexpr double kSecondsBeyondSleep = 2;
/// Seconds. A card that was awake for so much less than the time that passed has slept.
constexpr double kShortestSleep = 1;

}  // namespace

GraphicsCard::GraphicsCard(std::string root, GraphicsDevice device,
                           std::unique_ptr<GpuSource> source)
    : root_(std::move(root)),
      device_(std::move(device)),
      source_(std::move(source)),
      power_(device_.folder, device_.card) {}

PropertyDictionary GraphicsCard::properties(double now) {
    PropertyDictionary properties;
    if (const std::optional<GpuUtilization> current = utilization(now)) {
        PropertyDictionary statistics{{"Device Utilization %", current->device}};
        if (current->renderer) {
            statistics.push_back({"Renderer Utilization %", *current->renderer});
        }
        properties.push_back({"PerformanceStatistics", std::move(statistics)});
    }
    if (modelName_ && !modelName_->empty()) {
        properties.push_back({"model", *modelName_});
    }
    if (coreCount_) {
        properties.push_back({"gpu-core-count", *coreCount_});
    }
    return properties;
}

std::optional<GpuUtilization> GraphicsCard::utilization(double now) {
    if (!source_) {
        return std::nullopt;
    }
    if (!source_->touchesCard()) {
        return readSource(now);
    }
    if (!power_.isAwake()) {
        source_->forget();
        rest_.reset();
        return std::nullopt;
    }
    if (rest_ && !isOver(*rest_, now)) {
        return last_;
    }
    rest_.reset();
    last_ = readSource(now);
    if ((!last_ || last_->device < kIdleBelow) && power_.couldSleep()) {
        rest_ = {.from = now,
                 .until = now + power_.secondsUntilSleep() + kSecondsBeyondSleep,
                 .awake = power_.millisecondsAwake()};
        source_->rest();
    }
    return last_;
}

std::optional<GpuUtilization> GraphicsCard::readSource(double now) {
    const std::optional<GpuUtilization> current = source_->read(now);
    if (current && !modelName_) {
        lookUpName();
    }
    return current;
}

bool GraphicsCard::isOver(const Rest& rest, double now) {
    if (now < rest.from || now >= rest.until || power_.isHeldAwake()) {
        return true;
    }
    const std::optional<std::uint64_t> awake = power_.millisecondsAwake();
    if (!awake || !rest.awake || *awake <= *rest.awake) {
        return false;
    }
    // The card fell asleep in between, and somebody woke it.
    const double slept = now - rest.from - static_cast<double>(*awake - *rest.awake) / 1000;
    return slept > kShortestSleep;
}

void GraphicsCard::lookUpName() {
    modelName_ = source_->modelName();
    coreCount_ = source_->coreCount();
    if (modelName_->empty()) {
        const std::string text = readWholeFile(device_.folder + "/revision").value_or("");
        const std::string_view revision = firstLineOf(text);
        modelName_ =
            graphicsName(root_, device_.identity.vendor, device_.identity.device,
                         revision.starts_with("0x") ? revision.substr(2) : std::string_view());
    }
}

}  // namespace tarnwick::platform
