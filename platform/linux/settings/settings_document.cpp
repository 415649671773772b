// SPDX-License-Identifier: MIT
#include "platform/linux/settings/settings_document.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <nlohmann/json.hpp>
#include <system_error>
#include <utility>
#include <vector>

namespace tarnwick::platform {
namespace {

using nlohmann::json;

constexpr std::string_view kSpace = " \t\r\n";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
/// Up to here a double holds every whole number.
constexpr double kWholeNumbers = 9'007'199'254'740'992;

std::string_view trimmed(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(kSpace), text.size()));
    return text.substr(0, text.find_last_not_of(kSpace) + 1);
}

/// Takes what comes before `stop`, and `stop` itself; false when there is none, and takes all. Only
/// tells where a part ends, outside of quotes and brackets: what is in it is for the parser.
bool cut(std::string_view& text, char stop, std::string_view& part) {
    std::size_t at = 0;
    bool isQuoted = false;
    for (int depth = 0; at < text.size() && (isQuoted || depth > 0 || text[at] != stop); ++at) {
        const char character = text[at];
        if (character == '"') {
            isQuoted = !isQuoted;
        } else if (isQuoted) {
            at += character == '\\' ? 1 : 0;
        } else {
            depth += character == '[' || character == '{' ? 1 : 0;
            depth -= character == ']' || character == '}' ? 1 : 0;
        }
    }
    const bool isFound = at < text.size();
    part = trimmed(text.substr(0, at));
    text.remove_prefix(std::min(at + 1, text.size()));
    return isFound;
}

/// A number that no double holds, or none at all as some programs write it.
bool isBeyondNumbers(std::string_view text) {
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return end == text.data() + text.size() &&
           (error == std::errc::result_out_of_range || !std::isfinite(number));
}

DefaultsValue wholeOrNot(double number) {
    if (std::trunc(number) == number && std::abs(number) <= kWholeNumbers) {
        return static_cast<std::int64_t>(number);
    }
    return number;
}

std::optional<DefaultsValue> valueOf(const json& value, std::string_view text) {
    if (value.is_boolean()) {
        return value.get<bool>();
    }
    if (value.is_string()) {
        return value.get<std::string>();
    }
    if (value.is_number_float()) {
        // Without one of these it is an integer of more than 64 bits.
        const bool isFraction = text.find_first_of(".eE") != std::string_view::npos;
        return isFraction ? std::optional(wholeOrNot(value.get<double>())) : std::nullopt;
    }
    if (value.is_number_unsigned() &&
        value.get<std::uint64_t>() > std::numeric_limits<std::int64_t>::max()) {
        return std::nullopt;
    }
    return value.is_number() ? std::optional<DefaultsValue>(value.get<std::int64_t>())
                             : std::nullopt;
}

std::string encodedText(const json& value) {
    return value.dump(-1, ' ', false, json::error_handler_t::replace);
}

struct Encoder {
    std::string operator()(Date date) const { return (*this)(date.secondsSince1970); }
    std::string operator()(double number) const {
        const DefaultsValue value = wholeOrNot(number);
        const auto* whole = std::get_if<std::int64_t>(&value);
        return whole ? (*this)(*whole) : encodedText(number);
    }
    template <class Value>
    std::string operator()(const Value& value) const {
        return encodedText(value);
    }
};

}  // namespace

std::optional<SettingsDocument> SettingsDocument::decode(std::string_view text) {
    // The parser would take a zero byte for the end.
    if (text.size() > kLimit || text.find('\0') != std::string_view::npos) {
        return std::nullopt;
    }
    if (text.substr(0, kByteOrderMark.size()) == kByteOrderMark) {
        text.remove_prefix(kByteOrderMark.size());
    }
    SettingsDocument document;
    text = trimmed(text);
    if (text.size() < 2 || text.front() != '{' || text.back() != '}') {
        return std::nullopt;
    }
    text = trimmed(text.substr(1, text.size() - 2));
    std::string_view part;
    for (bool isMore = !text.empty(); isMore;) {
        const json key = cut(text, ':', part) ? json::parse(part, nullptr, false) : json();
        isMore = cut(text, ',', part);
        auto member = decodeMember(part);
        if (!key.is_string() || !member) {
            return std::nullopt;
        }
        document.put(key.get<std::string>(), std::move(*member));
    }
    return document;
}

/// Absent when `text` is no value.
std::optional<SettingsDocument::Member> SettingsDocument::decodeMember(std::string_view text) {
    Member member{0, std::string(text), std::nullopt};
    if (text.substr(0, 1) == "[" || text.substr(0, 1) == "{") {
        return json::accept(text) ? std::optional(std::move(member)) : std::nullopt;
    }
    const json value = json::parse(text, nullptr, false);
    if (value.is_discarded() && !isBeyondNumbers(text)) {
        return std::nullopt;
    }
    member.value = valueOf(value, text);
    return member;
}

void SettingsDocument::put(std::string key, Member member) {
    const auto [found, isNew] = members_.try_emplace(std::move(key));
    member.place = isNew ? members_.size() : found->second.place;
    found->second = std::move(member);
}

std::string SettingsDocument::encode() const {
    std::vector<decltype(members_)::const_pointer> members;
    members.reserve(members_.size());
    for (const auto& member : members_) {
        members.push_back(&member);
    }
    std::sort(members.begin(), members.end(),
              [](auto* left, auto* right) { return left->second.place < right->second.place; });
    std::string text = "{";
    for (const auto* member : members) {
        text += text.size() == 1 ? "\n  " : ",\n  ";
        text += encodedText(member->first) + ": " + member->second.text;
    }
    return text + (members.empty() ? "}\n" : "\n}\n");
}

std::optional<DefaultsValue> SettingsDocument::value(std::string_view key) const {
    const auto found = members_.find(key);
    return found == members_.end() ? std::nullopt : found->second.value;
}

bool SettingsDocument::set(std::string_view key, const DefaultsValue& value) {
    auto member = decodeMember(std::visit(Encoder(), value));
    const auto found = members_.find(key);
    if (!member ||
        (found != members_.end() && (found->second.text == member->text ||
                                     (member->value && found->second.value == member->value)))) {
        return false;
    }
    put(std::string(key), std::move(*member));
    return true;
}

bool SettingsDocument::readsAs(const SettingsDocument& other) const {
    return std::equal(members_.begin(), members_.end(), other.members_.begin(),
                      other.members_.end(), [](const auto& left, const auto& right) {
                          return left.first == right.first &&
                                 left.second.value == right.second.value;
                      });
}

}  // namespace tarnwick::platform
