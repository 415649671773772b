// SPDX-License-Identifier: MIT
// The manual page beside what the program does.
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <nlohmann/json.hpp>
#include <regex>
#include <set>
#include <string>

#include "tools/machine_sample.h"

namespace tarnwick::probe {
namespace {

using nlohmann::json;

/// With the dashes of its options as they are typed.
std::string manualPage() {
    std::ifstream file(MANUAL_PAGE, std::ios::binary);
    std::string text(std::istreambuf_iterator<char>(file), {});
    std::erase(text, '\\');
    return text;
}

void collectNames(const json& value, std::set<std::string>& names) {
    if (value.is_object()) {
        for (const auto& [name, member] : value.items()) {
            names.insert(name);
            collectNames(member, names);
        }
    } else if (value.is_array()) {
        for (const json& element : value) {
            collectNames(element, names);
        }
    }
}

TEST(ManualPage, DescribesEveryOption) {
    const std::string page = manualPage();
    for (const char* option :
         {".BI --format \" FORMAT\"\n", ".B --all\n", ".BI --thresholds \" FILE\"\n",
          ".BI --output \" FILE\"\n", ".B --watch\n", ".BI --root \" DIR\"\n",
          ".BI --samples \" N\"\n", ".BI --interval \" SECONDS\"\n", ".BI --limit \" N\"\n",
          ".BI --home \" DIR\"\n", ".B --help\n", ".B --version\n"}) {
        EXPECT_NE(page.find(option), std::string::npos) << option;
    }
}

TEST(ManualPage, NamesEveryMember) {
    MachineSample sample;
    sample.storage->resize(1);
    sample.gpus.resize(1);
    sample.topCPUProcesses.resize(1);
    std::set<std::string> names;
    collectNames(json::parse(reportLine(sample)), names);
    EXPECT_GT(names.size(), 40U);
    const std::string page = manualPage();
    for (const std::string& name : names) {
        EXPECT_TRUE(std::regex_search(page, std::regex("\\b" + name + "\\b"))) << name;
    }
}

}  // namespace
}  // namespace tarnwick::probe
