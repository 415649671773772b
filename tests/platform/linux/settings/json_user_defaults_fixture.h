// SPDX-License-Identifier: MIT
// A store on a file in a private folder, in virtual time, with what it told the user.
#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "platform/linux/settings/json_user_defaults.h"
#include "platform/testing/manual_dispatch.h"
#include "tests/platform/linux/settings/counted_syncs.h"
#include "tests/platform/linux/temporary_folder.h"

namespace tarnwick::testing {

inline std::string contentsOf(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

/// As an editor that writes into the file where it lies.
inline void putContents(const std::filesystem::path& file, const std::string& bytes) {
    std::ofstream stream(file, std::ios::binary | std::ios::trunc);
    stream << bytes;
    ASSERT_TRUE(stream.flush().good());
}

/// As an editor that replaces the file.
inline void replaceContents(const std::filesystem::path& file, const std::string& bytes) {
    const std::filesystem::path beside = file.native() + "~";
    putContents(beside, bytes);
    std::filesystem::rename(beside, file);
}

class JsonUserDefaultsFixture : public ::testing::Test {
 protected:
    ~JsonUserDefaultsFixture() override { platform::testing::beforeSync = nullptr; }

    /// Begins to read; nothing has been read yet.
    std::unique_ptr<platform::JsonUserDefaults> begin() {
        return std::make_unique<platform::JsonUserDefaults>(
            file, dispatch, [this](std::string_view line) { lines.emplace_back(line); });
    }
    std::unique_ptr<platform::JsonUserDefaults> open() {
        auto store = begin();
        dispatch.runMain();
        return store;
    }
    /// Time goes on after something has happened in the store's folders.
    void notice(platform::JsonUserDefaults& store) {
        store.folderMayHaveChanged();
        dispatch.advance(platform::JsonUserDefaults::kDelay);
    }
    /// Names of everything in the folder.
    std::vector<std::string> names() const {
        std::vector<std::string> found;
        for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
            found.push_back(entry.path().filename().native());
        }
        std::sort(found.begin(), found.end());
        return found;
    }

    TemporaryFolder folder;
    std::filesystem::path file = folder / "settings.json";
    platform::testing::ManualDispatch dispatch;
    std::vector<std::string> lines;
};

}  // namespace tarnwick::testing
