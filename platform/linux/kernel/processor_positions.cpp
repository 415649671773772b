#include "platform/linux/kernel/processor_positions.h"

#include <algorithm>
#include <utility>

#include "core/records/checked_math.h"

namespace tarnwick::platform {

std::vector<std::uint32_t> ProcessorPositions::words(
    const std::vector<ProcessorTicks>& processors) {
    if (!sameProcessors(processors)) {
        rearrange(processors);
    }
    std::vector<std::uint32_t> words;
    words.reserve(processors.size() * 4);
    for (std::size_t index = 0; index < processors.size(); ++index) {
        Position& position = positions_[index];
        position.last = processors[index];
        for (std::size_t kind = 0; kind < 4; ++kind) {
            words.push_back(position.last.words[kind] + position.offsets[kind]);
        }
    }
    return words;
}

bool ProcessorPositions::sameProcessors(const std::vector<ProcessorTicks>& processors) const {
    return std::equal(processors.begin(), processors.end(), positions_.begin(), positions_.end(),
                      [](const ProcessorTicks& now, const Position& before) {
                          return now.processor == before.last.processor;
                      });
}

void ProcessorPositions::rearrange(const std::vector<ProcessorTicks>& processors) {
    std::vector<Position> positions(processors.size());
    for (std::size_t index = 0; index < std::min(processors.size(), positions_.size()); ++index) {
        const ProcessorTicks& now = processors[index];
        const Position& predecessor = positions_[index];
        const auto before = std::find_if(
            positions_.begin(), positions_.end(),
            [&now](const Position& position) { return position.last.processor == now.processor; });
        for (std::size_t kind = 0; kind < 4; ++kind) {
            const std::uint32_t shown = predecessor.last.words[kind] + predecessor.offsets[kind];
            const std::uint32_t moved =
                before == positions_.end()
                    ? 0
                    : counterDelta(now.words[kind], before->last.words[kind]);
            positions[index].offsets[kind] = shown + moved - now.words[kind];
        }
    }
    positions_ = std::move(positions);
}

}  // namespace tarnwick::platform
