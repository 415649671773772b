// SPDX-License-Identifier: MIT
// Child processes that follow a test's script, with their own clock.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/child_process.h"

namespace tarnwick::platform::testing {

/// One thread.
class ScriptedChildProcesses final : public ChildProcesses {
 public:
    /// What a child does, from its start on.
    struct Script {
        bool canBeStarted = true;
        /// Outcomes of read(), in order; afterwards there is nothing more to read. Data comes from
        /// `output`, at most as much as fits into the reader's buffer.
        std::deque<PipeRead::Outcome> reads{};
        /// The data for reads. Each read returns as much as it can, but at most `piece` bytes.
        std::string output{};
        std::size_t piece = static_cast<std::size_t>(-1);
        /// The moment of its end on `clock`; if absent, it never ends.
        std::optional<double> endsAt{};
        std::int32_t status = 0;
    };

    /// What happened to the children.
    struct Record {
        std::string path{};
        std::vector<std::string> arguments{};
        /// Seconds, one entry for each poll.
        std::vector<double> polls{};
        std::size_t largestRead = 0;
        int started = 0;
        int terminated = 0;
        /// Children that were started and are not destroyed yet.
        int alive = 0;
    };

    Script script;
    Record record;
    /// Seconds. A poll advances it by its whole waiting time.
    double clock = 0;

    std::unique_ptr<ChildProcess> spawn(const std::string& path,
                                        const std::vector<std::string>& arguments) override;

 private:
    class Child;
};

}  // namespace tarnwick::platform::testing
