// SPDX-License-Identifier: MIT
#include "tests/platform/linux/machine_tree.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <stdexcept>
#include <stdlib.h>

namespace tarnwick::platform::testing {

namespace {

std::filesystem::path below(const std::string& root, std::string_view path) {
    return std::filesystem::path(root) / path;
}

}  // namespace

std::vector<std::string> recordedMachines(std::string_view group) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(below(TARNWICK_FIXTURES, group))) {
        // The folder of a group has a note and machines only.
        const bool isGroup = group.empty() && !std::filesystem::is_directory(entry.path() / "proc");
        if (entry.is_directory() && !isGroup) {
            names.push_back(entry.path().filename().native());
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string recordedMachine(std::string_view name) {
    return below(TARNWICK_FIXTURES, name).native();
}

std::string recordedFile(std::string_view machine, std::string_view path) {
    std::ifstream file(below(recordedMachine(machine), path), std::ios::binary);
    EXPECT_TRUE(file.is_open()) << machine << " has no " << path;
    return std::string(std::istreambuf_iterator<char>(file), {});
}

MachineTree::MachineTree() : root_(::testing::TempDir() + "tarnwick-machine-XXXXXX") {
    if (::mkdtemp(root_.data()) == nullptr) {
        throw std::runtime_error("no private folder for the test");
    }
}

MachineTree::MachineTree(std::string_view machine) : MachineTree() {
    std::filesystem::copy(
        recordedMachine(machine), root_,
        std::filesystem::copy_options::recursive | std::filesystem::copy_options::copy_symlinks);
}

MachineTree::~MachineTree() {
    std::error_code ignored;
    std::filesystem::remove_all(root_, ignored);
}

void MachineTree::write(std::string_view path, std::string_view content) const {
    const std::filesystem::path file = below(root_, path);
    std::filesystem::create_directories(file.parent_path());
    std::ofstream stream(file, std::ios::binary | std::ios::trunc);
    stream << content;
    ASSERT_TRUE(stream.flush().good()) << file;
}

void MachineTree::truncate(std::string_view path, std::size_t size) const {
    std::filesystem::resize_file(below(root_, path), size);
}

void MachineTree::remove(std::string_view path) const {
    ASSERT_GT(std::filesystem::remove_all(below(root_, path)), 0U) << path;
}

void MachineTree::makeFolder(std::string_view path) const {
    std::filesystem::create_directories(below(root_, path));
}

void MachineTree::link(std::string_view path, std::string_view target) const {
    const std::filesystem::path link = below(root_, path);
    std::filesystem::create_directories(link.parent_path());
    std::filesystem::create_symlink(target, link);
}

void MachineTree::turnToLater() const {
    std::filesystem::copy(below(root_, "later"), root_,
                          std::filesystem::copy_options::recursive |
                              std::filesystem::copy_options::overwrite_existing);
}

}  // namespace tarnwick::platform::testing
