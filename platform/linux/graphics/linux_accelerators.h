// SPDX-License-Identifier: MIT
// The graphics cards of the machine.
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/accelerators.h"
#include "platform/linux/graphics/graphics_card.h"
#include "platform/linux/graphics/nvml.h"
#include "platform/linux/graphics/runtime_power.h"
#include "platform/timed_source.h"
#include "platform/workers.h"

namespace tarnwick::platform {

/// Lists the cards in the order of their DRM numbers, then NVIDIA's cards without such a number.
/// Their utilisation comes from amdgpu's own figure, from the engine times of i915, xe and other
/// drivers that tell them, and from NVIDIA's management library. New cards are noticed within a
/// minute. Any thread; calls take turns.
class LinuxAccelerators final : public Accelerators {
 public:
    /// Reads the tree below `root`. If `root` is not "/", nothing comes from the running machine:
    /// the management library is not used, and the time is that of the tree, which stands still in
    /// a recorded one.
    explicit LinuxAccelerators(std::string root = "/", Workers& workers = noWorkers());
    /// `clock` gives seconds that do not pass while the machine sleeps, on any thread;
    /// `nvmlLibrary` is the name or path of the management library, none if empty. Each card is
    /// read by one of `workers`. Requires: while a card has not answered, this object lives.
    LinuxAccelerators(std::string root, std::function<double()> clock, std::string nvmlLibrary,
                      Workers& workers = noWorkers());

    /// Never fails: without cards there are no services. A card that hangs delays the answer once,
    /// by kSensorPatience, and holds up no other card, except that of two cards of NVIDIA's.
    MatchingServices matchingServices() override;

 private:
    struct Card {
        // Shared with a worker that may never come back.
        std::shared_ptr<GraphicsCard> card;
        std::unique_ptr<TimedSource<PropertyDictionary>> source;
        /// Read here, where no driver can hold it up.
        RuntimePower power;
        /// Whether it slept at the last reading; absent for one that is asked all the same.
        std::optional<bool> sleeps{};
        /// What a card tells that has been found asleep; absent while it is awake.
        std::optional<PropertyDictionary> asleep{};
    };

    void findCards();
    /// Absent if the card does not answer.
    std::optional<PropertyDictionary> propertiesOf(Card& one);
    std::unique_ptr<GpuSource> sourceFor(const GraphicsDevice& device);

    const std::string root_;
    const std::function<double()> clock_;
    Workers& workers_;

    /// Used by the sources of NVIDIA's cards.
    Nvml nvml_;
    std::mutex lock_;
    // Guarded by lock_.
    std::vector<Card> cards_;
    std::optional<double> cardsFoundAt_;
};

}  // namespace tarnwick::platform
