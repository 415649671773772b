// SPDX-License-Identifier: MIT
#include "services/process_runner.h"

#include <algorithm>
#include <memory>
#include <string_view>
#include <utility>

namespace tarnwick {
namespace {

/// Seconds.
constexpr double kLongestWait = 0.02;
constexpr std::size_t kReadSize = 16'384;

/// Takes in what the child prints, one read at a time.
class Output {
 public:
    enum class State { open, ended, failed };

    explicit Output(std::size_t limit) : limit_(limit) {}

    State readFrom(platform::ChildProcess& child) {
        using Outcome = platform::PipeRead::Outcome;
        const platform::PipeRead read = child.read(buffer_);
        switch (read.outcome) {
            case Outcome::data:
                if (read.size > limit_ - text_.size()) {
                    return State::failed;
                }
                text_.append(buffer_.data(), read.size);
                return State::open;
            case Outcome::wouldBlock:
            case Outcome::interrupted:
                return State::open;
            case Outcome::end:
                return State::ended;
            case Outcome::failed:
                break;
        }
        return State::failed;
    }

    std::string take() { return std::move(text_); }

 private:
    const std::size_t limit_;
    std::string text_;
    std::string buffer_ = std::string(kReadSize, '\0');
};

}  // namespace

ProcessRunner::ProcessRunner(platform::ChildProcesses& processes,
                             std::function<double()> monotonicSeconds)
    : processes_(processes), monotonicSeconds_(std::move(monotonicSeconds)) {}

std::optional<std::string> ProcessRunner::run(const ProcessRequest& request) {
    const std::unique_ptr<platform::ChildProcess> child =
        processes_.spawn(request.path, request.arguments);
    if (!child) {
        return std::nullopt;
    }
    const double deadline = monotonicSeconds_() + request.timeout;
    Output output(request.outputLimit);
    auto state = Output::State::open;
    while (state != Output::State::failed) {
        const double left = deadline - monotonicSeconds_();
        if (!(left > 0)) {
            break;
        }
        child->poll(std::min(left, kLongestWait));
        if (state == Output::State::open) {
            state = output.readFrom(*child);
        }
        // The output may end before the process does. The status of the process decides.
        if (state == Output::State::ended) {
            if (const std::optional<std::int32_t> status = child->status()) {
                return *status == 0 ? std::optional(output.take()) : std::nullopt;
            }
        }
    }
    child->terminate();
    return std::nullopt;
}

}  // namespace tarnwick
