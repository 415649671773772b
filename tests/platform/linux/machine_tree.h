// SPDX-License-Identifier: MIT
// File trees that stand for a machine: recorded ones and ones that a test writes.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick::platform::testing {

/// The names of all recorded machines, in alphabetical order. A group, such as "memories", holds
/// machines of which only that part is recorded.
std::vector<std::string> recordedMachines(std::string_view group = "");

/// Root of the recorded machine of this name, such as "laptop" or "memories/zfs".
std::string recordedMachine(std::string_view name);

/// The content of a file of a recorded machine; the test fails if the file is missing.
std::string recordedFile(std::string_view machine, std::string_view path);

/// An empty private folder that is removed at the end.
class MachineTree {
 public:
    MachineTree();
    /// Filled with a copy of the recorded machine of this name.
    explicit MachineTree(std::string_view machine);
    MachineTree(const MachineTree&) = delete;
    MachineTree& operator=(const MachineTree&) = delete;
    ~MachineTree();

    const std::string& root() const { return root_; }
    /// Writes a file in place, with its folders.
    void write(std::string_view path, std::string_view content) const;
    /// Cuts a file of the tree to `size` bytes.
    void truncate(std::string_view path, std::size_t size) const;
    void remove(std::string_view path) const;
    void makeFolder(std::string_view path) const;
    void link(std::string_view path, std::string_view target) const;
    /// Writes the files of the folder `later` over those of the tree, in place.
    void turnToLater() const;

 private:
    std::string root_;
};

}  // namespace tarnwick::platform::testing
