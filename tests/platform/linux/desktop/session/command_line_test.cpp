// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/session/command_line.h"

#include <gtest/gtest.h>
#include <vector>

namespace tarnwick::platform {
namespace {

CommandLine parsed(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "tarnwick");
    std::vector<char*> pointers;
    for (std::string& argument : arguments) {
        pointers.push_back(argument.data());
    }
    return parseCommandLine(static_cast<int>(pointers.size()), pointers.data(), "1.2.3");
}

TEST(CommandLine, APlainStartAsksForNothing) {
    EXPECT_EQ(parsed({}).request, std::nullopt);
    EXPECT_EQ(parsed({}).text, std::nullopt);
    EXPECT_EQ(parseCommandLine(0, nullptr, "").request, std::nullopt);
}

TEST(CommandLine, UnknownOptionsArePassedOver) {
    const CommandLine line = parsed({"--unknown", "-platform", "xcb", "", "settings", "--toggled"});
    EXPECT_EQ(line.request, std::nullopt);
    EXPECT_EQ(line.text, std::nullopt);
}

TEST(CommandLine, TheLastRequestCounts) {
    EXPECT_EQ(parsed({"--settings"}).request, Request::showSettings);
    EXPECT_EQ(parsed({"--odd", "--toggle"}).request, Request::togglePanel);
    EXPECT_EQ(parsed({"--settings", "--toggle"}).request, Request::togglePanel);
}

TEST(CommandLine, TextsArePrintedInsteadOfStarting) {
    EXPECT_EQ(parsed({"--version"}).text, "tarnwick 1.2.3\n");
    const std::string help = parsed({"--help"}).text.value_or("");
    for (const char* option : {"--toggle", "--settings", "--help", "--version"}) {
        EXPECT_NE(help.find(option), std::string::npos) << option;
    }
}

}  // namespace
}  // namespace tarnwick::platform
