// SPDX-License-Identifier: MIT
#include "platform/linux/kernel/processor_counts.h"

#include <algorithm>
#include <limits>

#include "core/records/checked_math.h"

namespace tarnwick::platform {

namespace {

// Which of the four words each column belongs to, in the order of the columns.
constexpr std::array<std::size_t, ProcessorTicks::columnCount> kWords = {0, 3, 1, 2, 2, 1, 1, 1};

constexpr std::uint64_t kMostTicks = std::numeric_limits<std::uint32_t>::max();

// The last reading of this processor, which is nearly always at the same position.
const ProcessorTicks* find(const std::vector<ProcessorTicks>& readings, std::size_t position,
                           std::uint32_t processor) {
    if (position < readings.size() && readings[position].processor == processor) {
        return &readings[position];
    }
    const auto found = std::ranges::find(readings, processor, &ProcessorTicks::processor);
    return found == readings.end() ? nullptr : &*found;
}

}  // namespace

std::vector<std::uint32_t> ProcessorCounts::words(const std::vector<ProcessorTicks>& processors) {
    counts_.resize(processors.size());
    bool wouldWrap = false;
    for (std::size_t position = 0; position < processors.size(); ++position) {
        const ProcessorTicks& now = processors[position];
        std::array<std::uint64_t, 4>& counts = counts_[position];
        if (const ProcessorTicks* const before = find(previous_, position, now.processor)) {
            for (std::size_t column = 0; column < kWords.size(); ++column) {
                counts[kWords[column]] +=
                    counterDelta(now.columns[column], before->columns[column]);
            }
        }
        wouldWrap = wouldWrap || std::ranges::max(counts) > kMostTicks;
    }
    if (wouldWrap) {
        counts_.assign(counts_.size(), {});
    }
    std::vector<std::uint32_t> words;
    words.reserve(processors.size() * 4);
    for (const std::array<std::uint64_t, 4>& counts : counts_) {
        for (const std::uint64_t count : counts) {
            words.push_back(static_cast<std::uint32_t>(count));
        }
    }
    previous_ = processors;
    return words;
}

}  // namespace tarnwick::platform
