// SPDX-License-Identifier: MIT
#include "platform/linux/graphics/linux_accelerators.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "platform/linux/files/kept_file.h"
#include "platform/linux/kernel/clocks.h"
#include "platform/linux/kernel/proc_uptime.h"

namespace tarnwick::platform {

namespace {

constexpr double kSecondsBetweenSearches = 60;

/// Drivers of which some kernel tells how long the engines worked. On machines where the screen and
/// the graphics have a device each, the last three are the names that the whole card has.
constexpr std::array<std::string_view, 9> kDriversWithEngineTimes = {
    "i915", "xe", "nouveau", "v3d", "panfrost", "panthor", "msm_dpu", "msm_mdp", "adreno"};

bool isRunningMachine(std::string_view root) {
    return root == "/";
}

/// The name of the DRM card, such as "card0", or the place on the bus of a card without one.
std::string nameOf(const GraphicsDevice& device) {
    return device.card.empty() ? device.identity.slot
                               : device.card.substr(device.card.rfind('/') + 1);
}

std::function<double()> clockOf(const std::string& root) {
    if (isRunningMachine(root)) {
        return rawMonotonicSeconds;
    }
    return [file = belowRoot(root, "proc/uptime")] {
        return parseUptime(readWholeFile(file).value_or("")).value_or(0);
    };
}

}  // namespace

LinuxAccelerators::LinuxAccelerators(std::string root, Workers& workers)
    : LinuxAccelerators(root, clockOf(root), isRunningMachine(root) ? "libnvidia-ml.so.1" : "",
                        workers) {}

LinuxAccelerators::LinuxAccelerators(std::string root, std::function<double()> clock,
                                     std::string nvmlLibrary, Workers& workers)
    : root_(std::move(root)),
      clock_(std::move(clock)),
      workers_(workers),
      nvml_(std::move(nvmlLibrary)) {}

MatchingServices LinuxAccelerators::matchingServices() {
    const std::lock_guard guard(lock_);
    const double now = clock_();
    if (!cardsFoundAt_ || now < *cardsFoundAt_ || now - *cardsFoundAt_ >= kSecondsBetweenSearches) {
        findCards();
        cardsFoundAt_ = now;
    }
    MatchingServices found;
    for (Card& card : cards_) {
        if (auto properties = propertiesOf(card)) {
            const GraphicsDevice& device = card.card->device();
            properties->push_back({"card", nameOf(device)});
            properties->push_back({"driver", device.identity.driver});
            if (card.sleeps) {
                properties->push_back({"asleep", std::int64_t{*card.sleeps}});
            }
            found.services.push_back(*std::move(properties));
        } else {
            ++found.silent;
        }
    }
    return found;
}

std::optional<PropertyDictionary> LinuxAccelerators::propertiesOf(Card& one) {
    const auto ask = [this, card = one.card] { return card->properties(clock_()); };
    if (!one.card->hasSource()) {
        return ask();
    }
    if (one.card->maySleep()) {
        one.sleeps = !one.power.isAwake();
    }
    const bool sleeps = one.sleeps.value_or(false);
    if (!sleeps) {
        one.asleep.reset();
    } else if (one.asleep) {
        // It has nothing new to tell, so no worker has to wake up.
        return one.asleep;
    }
    auto properties = one.source->read(ask);
    if (sleeps && properties && propertyValue(*properties, "PerformanceStatistics") == nullptr) {
        one.asleep = properties;
    }
    return properties;
}

void LinuxAccelerators::findCards() {
    std::vector<Card> cards;
    for (GraphicsDevice& device : findGraphicsDevices(root_)) {
        // A card that is still there keeps its samples. A card without a source is made anew,
        // because its driver may have been starting.
        const auto known = std::find_if(cards_.begin(), cards_.end(), [&device](const Card& one) {
            return one.card && one.card->hasSource() && one.card->device() == device;
        });
        if (known != cards_.end()) {
            cards.push_back(std::move(*known));
        } else {
            std::unique_ptr<GpuSource> source = sourceFor(device);
            RuntimePower power(device.folder);
            cards.push_back(
                {std::make_shared<GraphicsCard>(root_, std::move(device), std::move(source)),
                 std::make_unique<TimedSource<PropertyDictionary>>(workers_, kSensorPatience),
                 std::move(power)});
        }
    }
    cards_.swap(cards);
    // To end the connection to NVIDIA's driver is a question like any other: it may hang.
    for (Card& gone : cards) {
        if (gone.card && gone.card->hasSource()) {
            workers_.run([card = std::move(gone.card)]() mutable { card.reset(); },
                         kSensorPatience);
        }
    }
}

std::unique_ptr<GpuSource> LinuxAccelerators::sourceFor(const GraphicsDevice& device) {
    const GraphicsIdentity& identity = device.identity;
    if (identity.driver == "amdgpu") {
        return makeAmdgpuSource(root_, device);
    }
    if (std::ranges::count(kDriversWithEngineTimes, identity.driver) > 0 && !device.card.empty()) {
        return makeEngineTimeSource(root_, device);
    }
    if (identity.driver == "nvidia" && !identity.slot.empty()) {
        return makeNvidiaSource(nvml_, identity.slot);
    }
    return nullptr;
}

}  // namespace tarnwick::platform
