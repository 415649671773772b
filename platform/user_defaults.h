// SPDX-License-Identifier: MIT
// The per-user store of typed values.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "core/records/published.h"

namespace tarnwick::platform {

/// A point in time: wall-clock seconds since 1970.
struct Date {
    double secondsSince1970 = 0;

    bool operator==(const Date&) const = default;
};

/// A stored value with its type.
using DefaultsValue = std::variant<bool, std::int64_t, double, std::string, Date>;

/// Values by key. All readers in this process find a value as soon as it is set; it is then on its
/// way to where it outlasts the process. Values: any thread.
class UserDefaults {
 public:
    virtual ~UserDefaults() = default;

    /// The value under `key` with the type it was stored with; absent when there is none or it
    /// cannot be read.
    virtual std::optional<DefaultsValue> object(std::string_view key) = 0;
    /// Replaces the value under `key`, which may have another type.
    virtual void set(std::string_view key, const DefaultsValue& value) = 0;

    /// Whether anything is stored under `key`, even a value that object() cannot read. Call this
    /// before storing a default value, so that an unreadable value is not overwritten.
    virtual bool contains(std::string_view key) { return object(key).has_value(); }
    /// Whether all that is stored is known. False while the store cannot be read: what it holds
    /// then comes as an external change.
    virtual bool isComplete() { return true; }
    /// Whether the store has been asked and has answered, be it that it cannot be read. Until then
    /// only what has been set since the start is there; the answer comes as an external change.
    virtual bool hasAnswered() { return true; }
    /// Each is absent when there is no value or it has another type.
    std::optional<bool> boolean(std::string_view key);
    std::optional<std::int64_t> integer(std::string_view key);
    std::optional<std::string> text(std::string_view key);
    virtual std::optional<Date> date(std::string_view key);
    /// Integers are numbers, too.
    std::optional<double> number(std::string_view key);

    /// Calls `observer` when somebody else has changed values, which readers find by then, when the
    /// store first answers, and when it becomes complete. Never where the system cannot tell. Main
    /// thread.
    [[nodiscard]] virtual Subscription onExternalChange(std::function<void()> observer);
};

}  // namespace tarnwick::platform
