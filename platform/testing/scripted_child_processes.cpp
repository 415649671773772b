// SPDX-License-Identifier: MIT
#include "platform/testing/scripted_child_processes.h"

#include <algorithm>

namespace tarnwick::platform::testing {

class ScriptedChildProcesses::Child final : public ChildProcess {
 public:
    explicit Child(ScriptedChildProcesses& owner) : owner_(owner) {
        ++owner_.record.started;
        ++owner_.record.alive;
    }
    ~Child() override { --owner_.record.alive; }

    void poll(double seconds) override {
        owner_.record.polls.push_back(seconds);
        owner_.clock += seconds;
    }

    PipeRead read(std::span<char> buffer) override {
        Script& plan = owner_.script;
        owner_.record.largestRead = std::max(owner_.record.largestRead, buffer.size());
        if (plan.reads.empty()) {
            return {PipeRead::Outcome::wouldBlock};
        }
        if (plan.reads.front() != PipeRead::Outcome::data) {
            const PipeRead::Outcome outcome = plan.reads.front();
            plan.reads.pop_front();
            return {outcome};
        }
        const std::size_t size = std::min({plan.output.size(), buffer.size(), plan.piece});
        std::copy_n(plan.output.begin(), size, buffer.begin());
        plan.output.erase(0, size);
        if (plan.output.empty()) {
            plan.reads.pop_front();
        }
        return {PipeRead::Outcome::data, size};
    }

    std::optional<std::int32_t> status() override {
        const Script& plan = owner_.script;
        return plan.endsAt && owner_.clock >= *plan.endsAt ? std::optional(plan.status)
                                                           : std::nullopt;
    }

    void terminate() override { ++owner_.record.terminated; }

 private:
    ScriptedChildProcesses& owner_;
};

std::unique_ptr<ChildProcess> ScriptedChildProcesses::spawn(
    const std::string& path, const std::vector<std::string>& arguments) {
    record.path = path;
    record.arguments = arguments;
    return script.canBeStarted ? std::make_unique<Child>(*this) : nullptr;
}

}  // namespace tarnwick::platform::testing
