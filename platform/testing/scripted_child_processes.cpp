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
        if (owner_.pollsTakeTime) {
            owner_.clock += seconds;
        }
    }

    PipeRead read(std::span<char> buffer) override {
        Script& script = owner_.script;
        owner_.record.largestRead = std::max(owner_.record.largestRead, buffer.size());
        if (script.reads.empty()) {
            return {PipeRead::Outcome::wouldBlock};
        }
        if (script.reads.front() != PipeRead::Outcome::data) {
            const PipeRead::Outcome outcome = script.reads.front();
            script.reads.pop_front();
            return {outcome};
        }
        const std::size_t size = std::min({script.output.size(), buffer.size(), script.piece});
        std::copy_n(script.output.begin(), size, buffer.begin());
        script.output.erase(0, size);
        if (script.output.empty()) {
            script.reads.pop_front();
        }
        return {PipeRead::Outcome::data, size};
    }

    std::optional<std::int32_t> status() override {
        const Script& script = owner_.script;
        return script.endsAt && owner_.clock >= *script.endsAt ? std::optional(script.status)
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
