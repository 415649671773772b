// A store in a private folder, and its messages to the user.
#pragma once

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "platform/linux/settings/sqlite_user_defaults.h"
#include "tests/platform/linux/temporary_folder.h"

namespace tarnwick::testing {

inline std::string contentsOf(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

inline void putContents(const std::filesystem::path& file, const std::string& bytes) {
    std::ofstream stream(file, std::ios::binary | std::ios::trunc);
    stream << bytes;
    ASSERT_TRUE(stream.flush().good());
}

class SqliteUserDefaultsFixture : public ::testing::Test {
 protected:
    std::unique_ptr<platform::SqliteUserDefaults> open() { return openAt(file); }
    std::unique_ptr<platform::SqliteUserDefaults> openAt(const std::filesystem::path& path) {
        return std::make_unique<platform::SqliteUserDefaults>(
            path,
            [this](std::string_view line) {
                const std::lock_guard guard(linesLock);
                lines.emplace_back(line);
            },
            patience);
    }
    /// Names of everything in the store's folder.
    std::vector<std::string> names() const {
        std::vector<std::string> found;
        for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
            found.push_back(entry.path().filename().native());
        }
        std::sort(found.begin(), found.end());
        return found;
    }

    TemporaryFolder folder;
    std::filesystem::path file = folder / "settings.sqlite";
    std::filesystem::path damaged1 = folder / "settings.sqlite.damaged-1";
    std::filesystem::path damaged2 = folder / "settings.sqlite.damaged-2";
    std::chrono::milliseconds patience{0};
    std::mutex linesLock;
    std::vector<std::string> lines;
};

}  // namespace tarnwick::testing
