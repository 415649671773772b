// SPDX-License-Identifier: MIT
// The text of a settings file as values by key, and back.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "platform/user_defaults.h"

namespace tarnwick::platform {

/// The members of one JSON object. A number without a fraction is an integer however it is written,
/// and a date is a number. What nobody sets keeps its place and its text, be it of no type that
/// settings have. Of several members of one name the last counts.
class SettingsDocument {
 public:
    /// Bytes; no settings are longer.
    static constexpr std::size_t kLimit = 1'048'576;

    /// Absent when `text` is no JSON object, or too long. Let pass are numbers that no type holds,
    /// infinities and NaN; these have no value.
    static std::optional<SettingsDocument> decode(std::string_view text);
    /// One member a line, indented by two spaces; ends with a newline.
    std::string encode() const;

    bool contains(std::string_view key) const { return members_.find(key) != members_.end(); }
    /// Absent where there is no member, and where it is null, an array, an object or a number that
    /// no type holds.
    std::optional<DefaultsValue> value(std::string_view key) const;
    /// Puts the value in the place of what was there, else at the end. False where it was there
    /// already. What JSON cannot say becomes null, in texts the replacement character.
    bool set(std::string_view key, const DefaultsValue& value);
    bool empty() const { return members_.empty(); }
    /// Whether readers find the same under every key.
    bool readsAs(const SettingsDocument& other) const;

 private:
    struct Member {
        std::size_t place = 0;
        /// As in the file.
        std::string text;
        std::optional<DefaultsValue> value;
    };

    static std::optional<Member> decodeMember(std::string_view text);
    void put(std::string key, Member member);

    std::map<std::string, Member, std::less<>> members_;
};

}  // namespace tarnwick::platform
