// SPDX-License-Identifier: MIT
#include "tools/threshold_file.h"

#include <filesystem>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

#include "platform/linux/files/kept_file.h"
#include "platform/linux/settings/settings_document.h"
#include "platform/login_service.h"
#include "platform/user_defaults.h"
#include "settings/user_settings.h"

namespace tarnwick::probe {
namespace {

/// A store that remembers nothing.
class ReadOnlyDefaults final : public platform::UserDefaults {
 public:
    explicit ReadOnlyDefaults(platform::SettingsDocument document)
        : document_(std::move(document)) {}

    std::optional<platform::DefaultsValue> object(std::string_view key) override {
        return document_.value(key);
    }
    void set(std::string_view, const platform::DefaultsValue&) override {}

 private:
    const platform::SettingsDocument document_;
};

}  // namespace

ThresholdReading readThresholds(const std::string& file) {
    std::error_code error;
    const auto type = std::filesystem::status(file, error).type();
    if (type == std::filesystem::file_type::not_found) {
        return {.isMissing = true, .trouble = "there is no such file"};
    }
    if (type != std::filesystem::file_type::regular) {
        return {.trouble = error ? error.message() : "not a file"};
    }
    const std::optional<std::string> text = platform::readWholeFile(file);
    if (!text) {
        return {.trouble = "it cannot be read"};
    }
    // An editor may have emptied the file to fill it anew.
    if (text->find_first_not_of(" \t\r\n") == std::string::npos) {
        return {};
    }
    auto document = platform::SettingsDocument::decode(*text);
    if (!document) {
        return {.trouble = "it holds no settings"};
    }
    ReadOnlyDefaults store(*std::move(document));
    platform::NullLoginService login;
    return {.thresholds = UserSettings(store, login).thresholds()};
}

}  // namespace tarnwick::probe
