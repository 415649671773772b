// SPDX-License-Identifier: MIT
#include "platform/user_defaults.h"

namespace tarnwick::platform {
namespace {

template <class T>
std::optional<T> typed(const std::optional<DefaultsValue>& value) {
    if (value) {
        if (const T* held = std::get_if<T>(&*value)) {
            return *held;
        }
    }
    return std::nullopt;
}

}  // namespace

std::optional<bool> UserDefaults::boolean(std::string_view key) {
    return typed<bool>(object(key));
}

std::optional<std::int64_t> UserDefaults::integer(std::string_view key) {
    return typed<std::int64_t>(object(key));
}

std::optional<std::string> UserDefaults::text(std::string_view key) {
    return typed<std::string>(object(key));
}

std::optional<Date> UserDefaults::date(std::string_view key) {
    return typed<Date>(object(key));
}

std::optional<double> UserDefaults::number(std::string_view key) {
    const auto value = object(key);
    if (const auto whole = typed<std::int64_t>(value)) {
        return static_cast<double>(*whole);
    }
    return typed<double>(value);
}

Subscription UserDefaults::onExternalChange(std::function<void()>) {
    return {};
}

}  // namespace tarnwick::platform
