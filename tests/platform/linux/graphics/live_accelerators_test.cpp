// SPDX-License-Identifier: MIT
// The graphics cards of the machine that runs the tests.
#include <array>
#include <gtest/gtest.h>
#include <iostream>
#include <stdio.h>
#include <string>

#include "platform/linux/graphics/linux_accelerators.h"
#include "services/gpu_service.h"

namespace tarnwick::platform {
namespace {

TEST(LiveAccelerators, GiveFiguresWithinTheirBounds) {
    LinuxAccelerators accelerators;
    GPUService service(accelerators);
    for (int reading = 0; reading < 2; ++reading) {
        const GPUInfo info = service.readGPUInfo();
        EXPECT_GE(info.usagePercentage, 0);
        EXPECT_LE(info.usagePercentage, 100);
        EXPECT_GE(info.coreCount, 0);
        if (!info.isAvailable) {
            EXPECT_EQ(info.usagePercentage, 0);
            EXPECT_EQ(info.modelName, "");
        }
    }
}

/// The lines that the vendor's own tool prints for its cards; empty where there is none.
std::string askVendorsTool(const std::string& field) {
    FILE* const pipe = ::popen(
        ("nvidia-smi --format=csv,noheader,nounits --query-gpu=" + field + " 2>/dev/null").c_str(),
        "r");
    std::string output;
    std::array<char, 4096> part;
    while (pipe != nullptr && ::fgets(part.data(), static_cast<int>(part.size()), pipe)) {
        output += part.data();
    }
    return pipe != nullptr && ::pclose(pipe) == 0 ? output : "";
}

TEST(LiveNvidia, AgreesWithTheVendorsTool) {
    const std::string names = askVendorsTool("name");
    if (names.empty()) {
        GTEST_SKIP() << "this machine has no graphics card of NVIDIA, or no nvidia-smi";
    }
    LinuxAccelerators accelerators;
    const GPUInfo info = GPUService(accelerators).readGPUInfo();
    ASSERT_TRUE(info.isAvailable) << names;
    EXPECT_NE(names.find(info.modelName), std::string::npos) << names << info.modelName;
    EXPECT_FALSE(info.modelName.empty());
    std::cout << info.displayName() << ": " << info.usagePercentage << " %, the tool says "
              << askVendorsTool("utilization.gpu");
}

}  // namespace
}  // namespace tarnwick::platform
