// SPDX-License-Identifier: MIT
// The floor of a network pass: reads the same files and ignores their content.
#pragma once

#include <cstddef>
#include <vector>

namespace tarnwick::benchmarks {

/// Reads the list of interfaces and the flags of each, with bare system calls, in files that were
/// opened before. Parses nothing.
class BareInterfaceFiles {
 public:
    /// Opens the files of the interfaces that exist now.
    BareInterfaceFiles();
    BareInterfaceFiles(const BareInterfaceFiles&) = delete;
    BareInterfaceFiles& operator=(const BareInterfaceFiles&) = delete;
    ~BareInterfaceFiles();

    /// Bytes of all files together.
    std::size_t read();

 private:
    int list_ = -1;
    std::vector<int> flags_;
    std::vector<char> buffer_;
};

}  // namespace tarnwick::benchmarks
