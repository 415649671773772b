// SPDX-License-Identifier: MIT
#include "tools/threshold_file.h"

#include <filesystem>
#include <system_error>

#include "platform/login_service.h"
#include "settings/user_settings.h"
#include "tools/probe_system.h"

namespace tarnwick::probe {

ThresholdReading readThresholds(const std::string& file) {
    std::error_code error;
    const auto type = std::filesystem::status(file, error).type();
    if (type == std::filesystem::file_type::not_found) {
        return {.isMissing = true, .trouble = "there is no such file"};
    }
    if (type != std::filesystem::file_type::regular) {
        return {.trouble = error ? error.message() : "not a file"};
    }
    const StoredSettings settings = readSettings(file);
    if (!settings.values) {
        return {.trouble = settings.trouble};
    }
    platform::NullLoginService login;
    return {.thresholds = UserSettings(*settings.values, login).thresholds()};
}

}  // namespace tarnwick::probe
