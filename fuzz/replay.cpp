// SPDX-License-Identifier: MIT
// Runs a fuzz program over files that are there already: replay_NAME <file or folder>...
// Fails when it finds no file, so that a lost corpus is noticed.
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include "fuzz/fuzzer.h"

namespace {

namespace fs = std::filesystem;

void replay(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(stream), {}};
    if (!stream) {
        throw std::runtime_error("cannot read " + file.string());
    }
    // Printed before the run: if the program crashes, the last line names the input.
    std::printf("%s\n", file.filename().c_str());
    std::fflush(stdout);
    // A copy of exactly this size lets the address sanitizer see a read beyond its end.
    const std::vector<std::uint8_t> input(bytes.begin(), bytes.end());
    LLVMFuzzerTestOneInput(input.data(), input.size());
}

int replayAll(const fs::path& path) {
    if (!fs::is_directory(path)) {
        replay(path);
        return 1;
    }
    int files = 0;
    for (const auto& entry : fs::directory_iterator(path)) {
        if (entry.is_regular_file()) {
            replay(entry.path());
            ++files;
        }
    }
    return files;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        int files = 0;
        for (const std::string& path : std::vector<std::string>(argv + 1, argv + argc)) {
            files += replayAll(path);
        }
        std::printf("%d inputs\n", files);
        return files > 0 ? 0 : 1;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
