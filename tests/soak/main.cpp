// SPDX-License-Identifier: MIT
// Runs the tests of this folder: tests_soak [--refreshes=N]
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <string_view>

#include "tests/soak/held.h"

namespace tarnwick::testing {
namespace {

std::int64_t wanted = 1000;

}  // namespace

std::int64_t wantedRefreshes() {
    return wanted;
}

}  // namespace tarnwick::testing

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    constexpr std::string_view kOption = "--refreshes=";
    for (int at = 1; at < argc; ++at) {
        std::string_view text(argv[at]);
        const bool isKnown = text.starts_with(kOption);
        text.remove_prefix(isKnown ? kOption.size() : 0);
        std::int64_t& number = tarnwick::testing::wanted;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
        if (!isKnown || error != std::errc() || end != text.data() + text.size() || number < 1) {
            std::fprintf(stderr, "%s: not an option: %s\n", argv[0], argv[at]);
            return 2;
        }
    }
    return RUN_ALL_TESTS();
}
