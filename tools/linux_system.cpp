// SPDX-License-Identifier: MIT
#include <array>
#include <charconv>
#include <cstdlib>
#include <optional>
#include <string_view>
#include <utility>

#include "platform/linux/events/background_work.h"
#include "platform/linux/files/folders.h"
#include "platform/linux/files/kept_file.h"
#include "platform/linux/graphics/linux_accelerators.h"
#include "platform/linux/kernel/linux_kernel.h"
#include "platform/linux/network/linux_network_interfaces.h"
#include "platform/linux/power/linux_power_sources.h"
#include "platform/linux/power/linux_process_info.h"
#include "platform/linux/processes/linux_process_table.h"
#include "platform/linux/settings/settings_document.h"
#include "platform/linux/settings/settings_file.h"
#include "platform/linux/volumes/linux_volumes.h"
#include "platform/workers.h"
#include "tools/probe_system.h"
#include "tools/recorded_volumes.h"

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

std::variant<Sources, UsageError> makeSources(const Options& options) {
    using platform::BackgroundWork;
    const std::string& root = options.root;
    // Somebody waits for the sample, on a busy machine most of all.
    auto* const threads =
        new std::optional<BackgroundWork>(std::in_place, BackgroundWork::Priority::inherited);
    auto* const workers = new platform::ThreadWorkers(
        [threads](auto work) { return (*threads)->run(std::move(work)); });
    auto* const powerSources = new platform::LinuxPowerSources(root);
    platform::Volumes* volumes = new platform::LinuxVolumes(root, options.home);
    if (root != "/") {
        volumes = new RecordedVolumes(*volumes);
    }
    return Sources{
        .machine = {.kernel = new platform::LinuxKernel(root),
                    .volumes = volumes,
                    .networkInterfaces = new platform::LinuxNetworkInterfaces(root),
                    .accelerators = new platform::LinuxAccelerators(root, *workers),
                    .processInfo = new platform::LinuxProcessInfo(root),
                    .powerSources = powerSources,
                    .batteryHealth = powerSources,
                    .processTable = new platform::LinuxProcessTable(root, *workers),
                    .workers = workers},
        .end = [threads] { threads->reset(); },
    };
}

std::string usersSettingsFile() {
    return platform::settingsFile([](const char* name) { return std::getenv(name); }).native();
}

StoredSettings readSettings(const std::string& file) {
    const std::optional<std::string> text = platform::readWholeFile(file);
    if (!text) {
        return {.trouble = "it cannot be read"};
    }
    // An editor may have emptied the file to fill it anew.
    const bool isBlank = text->find_first_not_of(" \t\r\n") == std::string::npos;
    auto document =
        isBlank ? platform::SettingsDocument() : platform::SettingsDocument::decode(*text);
    if (!document) {
        return {.trouble = "it holds no settings"};
    }
    return {.values = std::make_unique<ReadOnlyDefaults>(*std::move(document))};
}

void makeLasting(const std::filesystem::path& folder) {
    platform::makeLasting(folder);
}

std::string numberText(double value) {
    std::array<char, 32> digits{};
    return {digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr};
}

}  // namespace tarnwick::probe
