// SPDX-License-Identifier: MIT
// The per-user store in memory.
#pragma once

#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/user_defaults.h"

namespace tarnwick::platform::testing {

class MemoryUserDefaults final : public UserDefaults {
 public:
    using Values = std::map<std::string, DefaultsValue, std::less<>>;
    using Write = std::pair<std::string, DefaultsValue>;

    MemoryUserDefaults() = default;
    /// A store that holds `values` already; they do not count as writes.
    explicit MemoryUserDefaults(Values values) : values_(std::move(values)) {}

    std::optional<DefaultsValue> object(std::string_view key) override;
    void set(std::string_view key, const DefaultsValue& value) override;
    bool contains(std::string_view key) override;
    bool isComplete() override;
    bool hasAnswered() override { return isComplete(); }
    Subscription onExternalChange(std::function<void()> observer) override {
        return external_.observe(std::move(observer));
    }

    /// Everything stored now.
    Values values() const;
    /// Every write since the start or the last clearWrites(), in order, also those that changed
    /// nothing.
    std::vector<Write> writes() const;
    void clearWrites();
    /// From here on like a store on a slow disk: what it holds comes with changeFromOutside().
    void beSlow();
    /// As somebody else would, in the store itself; announced when all is in there. Main thread.
    void changeFromOutside(const Values& values);
    /// As if `key` had never been stored.
    void remove(std::string_view key);

 private:
    mutable std::mutex lock_;
    Values values_;
    std::vector<Write> writes_;
    bool isSlow_ = false;
    Announcer external_;
};

}  // namespace tarnwick::platform::testing
