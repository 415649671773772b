// The per-user store of typed values.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace tarnwick::platform {

/// A point in time: wall-clock seconds since 1970.
struct Date {
    double secondsSince1970 = 0;

    bool operator==(const Date&) const = default;
};

/// A stored value with its type.
using DefaultsValue = std::variant<bool, std::int64_t, double, std::string, Date>;

/// Values by key. Any thread.
///
/// A write is durable when the call returns. If the store cannot be written, the value is kept for
/// all readers in this process and written as soon as possible.
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
    /// Each is absent when there is no value or it has another type.
    std::optional<bool> boolean(std::string_view key);
    std::optional<std::int64_t> integer(std::string_view key);
    std::optional<std::string> text(std::string_view key);
    std::optional<Date> date(std::string_view key);
    /// Integers are numbers, too.
    std::optional<double> number(std::string_view key);
};

}  // namespace tarnwick::platform
