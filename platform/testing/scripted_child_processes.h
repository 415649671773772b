// Children that do what a test wrote down, in a time that they turn themselves.
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
        /// Answers of read(), in order; afterwards there is nothing more to read. Data is taken
        /// from `output`, no more than fits the reader's buffer.
        std::deque<PipeRead::Outcome> reads{};
        /// What is given by reads that give data; each gives as much as it can, or `piece` bytes.
        std::string output{};
        std::size_t piece = static_cast<std::size_t>(-1);
        /// The moment of its end on clock(); never when absent.
        std::optional<double> endsAt{};
        std::int32_t status = 0;
    };

    /// What happened to the children.
    struct Record {
        std::string path{};
        std::vector<std::string> arguments{};
        /// Seconds, one entry a poll.
        std::vector<double> polls{};
        std::size_t largestRead = 0;
        int started = 0;
        int terminated = 0;
        /// Children that were started and are not destroyed yet.
        int alive = 0;
    };

    Script script;
    Record record;
    /// Seconds; a poll moves it by the time that it may wait.
    double clock = 0;

    std::unique_ptr<ChildProcess> spawn(const std::string& path,
                                        const std::vector<std::string>& arguments) override;

 private:
    class Child;
};

}  // namespace tarnwick::platform::testing
