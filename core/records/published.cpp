// SPDX-License-Identifier: MIT
#include "core/records/published.h"

#include <algorithm>

namespace tarnwick {

Subscription Announcer::observe(Observer observer) {
    const std::uint64_t id = state_->nextId++;
    state_->entries.push_back({id, std::make_shared<Observer>(std::move(observer))});
    return Subscription([weak = std::weak_ptr(state_), id] {
        if (const auto state = weak.lock()) {
            std::erase_if(state->entries, [id](const Entry& entry) { return entry.id == id; });
        }
    });
}

void Announcer::announce() {
    // The state is kept alive in case an observer destroys the announcer.
    const auto state = state_;
    const std::vector<Entry> called = state->entries;
    for (const Entry& entry : called) {
        const bool stillThere =
            std::any_of(state->entries.begin(), state->entries.end(),
                        [&entry](const Entry& other) { return other.id == entry.id; });
        if (stillThere) {
            (*entry.observer)();
        }
    }
}

}  // namespace tarnwick
