// SPDX-License-Identifier: MIT
// The stat files of the processes, kept open from one walk to the next.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/linux/files/kept_file.h"

namespace tarnwick::platform {

/// Keeps files open, because reading an open file again takes less than half the time of opening,
/// reading and closing. Uses at most half of the descriptors that the program may have; the files
/// of further processes are opened and closed each time. One thread at a time.
class KeptProcessFiles {
 public:
    /// Begins a walk over the processes in `folder`, an open folder like /proc.
    void beginWalk(const FileDescriptor& folder);
    /// The stat file of a process; valid until the next call. Absent if it cannot be read, because
    /// the process has ended. Requires: within one walk, rising identifiers.
    std::optional<std::string_view> read(std::int32_t identifier);
    /// Closes the files of processes that were not read in this walk.
    void endWalk();
    /// Closes all files.
    void release();

    std::size_t keptCount() const { return kept_.size(); }

 private:
    struct Kept {
        std::int32_t identifier = 0;
        FileDescriptor file;
    };

    /// The file that was kept for the process; not open when there is none.
    FileDescriptor takeKept(std::int32_t identifier);
    /// Not open when the process has ended.
    FileDescriptor openStat(std::int32_t identifier);
    std::optional<std::string_view> contentOf(const FileDescriptor& file);

    /// A line has about 300 bytes, 50 numbers of at most 20 digits at the very most.
    std::array<char, 4096> buffer_;
    const FileDescriptor* folder_ = nullptr;
    /// Files that may be open beside the one that is read.
    std::size_t limit_ = 0;
    /// Files of the previous walk, with rising identifiers; those before next_ are used up.
    std::vector<Kept> kept_;
    std::size_t next_ = 0;
    /// Files of this walk, with rising identifiers.
    std::vector<Kept> walked_;
};

}  // namespace tarnwick::platform
