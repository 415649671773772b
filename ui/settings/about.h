// SPDX-License-Identifier: MIT
// What the program says about itself.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace tarnwick {

/// The maker's web site.
inline constexpr std::string_view kMakerAddress = "https://brantlow.example/";

/// The program's own version information. A field is absent if it is missing or not a text.
struct ProgramInformation {
    std::optional<std::string> shortVersion{};
    std::optional<std::string> buildVersion{};
};

struct ProgramName {
    static constexpr std::string_view kName = "Tarnwick";
    static constexpr std::string_view kVersionTitle = "Version";
    static constexpr std::string_view kUnknown = "Unknown";

    /// "1.4 (212)".
    std::string version;

    bool operator==(const ProgramName&) const = default;
};

std::string versionText(const ProgramInformation& program);

struct FeatureRow {
    /// Symbol name.
    std::string_view icon;
    std::string_view title;
};

struct FeatureList {
    static constexpr std::array kRows = {
        FeatureRow{"hand.raised.fill", "Private by design"},
        FeatureRow{"moon.fill", "Quietly in the background"},
        FeatureRow{"leaf.fill", "Resource conscious"},
    };

    bool operator==(const FeatureList&) const = default;
};

/// A paragraph and links to the maker's web site below it.
struct PrivacyNote {
    static constexpr std::string_view kTitle = "Privacy & Security";
    static constexpr std::string_view kText =
        "Tarnwick processes system information locally. Learn more from Brantlow. Official "
        "releases are signed by Brantlow; direct downloads are also notarized by Apple.";
    static constexpr std::array<std::string_view, 2> kLinks = {"Learn More", "More from Brantlow"};

    bool operator==(const PrivacyNote&) const = default;
};

}  // namespace tarnwick
