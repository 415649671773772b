// SPDX-License-Identifier: MIT
// A private folder for one test, removed with everything in it.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <system_error>

namespace tarnwick::testing {

class TemporaryFolder {
 public:
    TemporaryFolder() {
        // In memory if the system has such a place, because tests should not wait for a disk.
        std::filesystem::path place = "/dev/shm";
        if (!std::filesystem::is_directory(place)) {
            place = std::filesystem::temp_directory_path();
        }
        std::string name = (place / "tarnwick-XXXXXX").native();
        if (::mkdtemp(name.data()) == nullptr) {
            throw std::runtime_error("no temporary folder");
        }
        path_ = name;
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::permissions(path_, std::filesystem::perms::owner_all, ignored);
        std::filesystem::remove_all(path_, ignored);
    }

    const std::filesystem::path& path() const { return path_; }
    std::filesystem::path operator/(const char* name) const { return path_ / name; }

 private:
    std::filesystem::path path_;
};

}  // namespace tarnwick::testing
