// SPDX-License-Identifier: MIT
#include "ui/settings/about.h"

namespace tarnwick {

std::string versionText(const ProgramInformation& program) {
    const std::string unknown(ProgramName::kUnknown);
    return program.shortVersion.value_or(unknown) + " (" + program.buildVersion.value_or(unknown) +
           ')';
}

}  // namespace tarnwick
