// SPDX-License-Identifier: MIT
// Runs the program itself.
#pragma once

#include <array>
#include <cstdio>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <vector>

namespace tarnwick::probe {

struct Outcome {
    int status = -1;
    /// Standard output, then standard error.
    std::string output;
};

/// A command for the shell, in no particular language.
inline Outcome runShell(const std::string& command) {
    Outcome result;
    std::FILE* pipe = ::popen(("export LC_ALL=C LANGUAGE= XDG_DATA_HOME= XDG_DATA_DIRS= "
                               "XDG_CONFIG_HOME=/no/such/folder; " +
                               command)
                                  .c_str(),
                              "re");
    if (pipe == nullptr) {
        ADD_FAILURE() << "no child process";
        return result;
    }
    std::array<char, 4096> buffer{};
    std::size_t got = 0;
    while ((got = std::fread(buffer.data(), 1, buffer.size(), pipe)) > 0) {
        result.output.append(buffer.data(), got);
    }
    const int status = ::pclose(pipe);
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return result;
}

/// Arguments as the shell takes them.
inline Outcome run(const std::string& arguments, const std::string& redirection = "2>&1") {
    return runShell(PROBE " " + arguments + " " + redirection);
}

inline std::vector<nlohmann::json> lines(const std::string& text) {
    std::vector<nlohmann::json> result;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        result.push_back(nlohmann::json::parse(line));
    }
    return result;
}

}  // namespace tarnwick::probe
