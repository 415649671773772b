// SPDX-License-Identifier: MIT
#include "platform/testing/memory_user_defaults.h"

namespace tarnwick::platform::testing {

std::optional<DefaultsValue> MemoryUserDefaults::object(std::string_view key) {
    const std::lock_guard guard(lock_);
    const auto found = values_.find(key);
    if (found == values_.end()) {
        return std::nullopt;
    }
    return found->second;
}

void MemoryUserDefaults::set(std::string_view key, const DefaultsValue& value) {
    const std::lock_guard guard(lock_);
    values_.insert_or_assign(std::string(key), value);
    writes_.emplace_back(key, value);
}

bool MemoryUserDefaults::contains(std::string_view key) {
    return !isComplete() || object(key).has_value();
}

bool MemoryUserDefaults::isComplete() {
    const std::lock_guard guard(lock_);
    return !isSlow_;
}

void MemoryUserDefaults::beSlow() {
    const std::lock_guard guard(lock_);
    isSlow_ = true;
}

MemoryUserDefaults::Values MemoryUserDefaults::values() const {
    const std::lock_guard guard(lock_);
    return values_;
}

std::vector<MemoryUserDefaults::Write> MemoryUserDefaults::writes() const {
    const std::lock_guard guard(lock_);
    return writes_;
}

void MemoryUserDefaults::clearWrites() {
    const std::lock_guard guard(lock_);
    writes_.clear();
}

void MemoryUserDefaults::changeFromOutside(const Values& values) {
    {
        const std::lock_guard guard(lock_);
        isSlow_ = false;
        for (const auto& [key, value] : values) {
            values_.insert_or_assign(key, value);
        }
    }
    external_.announce();
}

void MemoryUserDefaults::remove(std::string_view key) {
    const std::lock_guard guard(lock_);
    const auto found = values_.find(key);
    if (found != values_.end()) {
        values_.erase(found);
    }
}

}  // namespace tarnwick::platform::testing
