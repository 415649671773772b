// SPDX-License-Identifier: MIT
#include "platform/linux/processes/linux_process_table.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <dirent.h>
#include <limits>
#include <memory>
#include <string_view>
#include <unistd.h>
#include <utility>

#include "platform/linux/applications/application_unit.h"
#include "platform/linux/files/kept_file.h"
#include "platform/linux/files/list_items.h"
#include "platform/linux/kernel/online_processors.h"
#include "platform/linux/processes/proc_pid_stat.h"

namespace tarnwick::platform {

namespace {

constexpr std::uint64_t kNanosecondsPerSecond = 1'000'000'000;

// 146 years of processor time. No process has used more; differences and sums of such times cannot
// overflow.
constexpr std::uint64_t kMostNanoseconds = std::uint64_t{1} << 62;

// The units of the kernel's figures about a process.
struct Units {
    std::uint64_t nanosecondsPerTick =
        kNanosecondsPerSecond / static_cast<std::uint64_t>(::sysconf(_SC_CLK_TCK));
    std::uint64_t pageSize = static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE));
};

std::optional<TaskInformation> taskInformationOf(const ProcessStat& stat) {
    static const Units units;
    const std::uint64_t mostTicks = kMostNanoseconds / units.nanosecondsPerTick;
    const std::uint64_t mostPages = std::numeric_limits<std::uint64_t>::max() / units.pageSize;
    if (stat.userTicks > mostTicks || stat.systemTicks > mostTicks ||
        stat.residentPages > mostPages) {
        return std::nullopt;
    }
    return TaskInformation{.residentSize = stat.residentPages * units.pageSize,
                           .totalUser = stat.userTicks * units.nanosecondsPerTick,
                           .totalSystem = stat.systemTicks * units.nanosecondsPerTick};
}

class ListedProcess final : public ProcessEntry {
 public:
    ListedProcess(KeptProcessFiles& files, std::int32_t identifier)
        : files_(files), identifier_(identifier) {}

    std::int32_t identifier() const override { return identifier_; }

    std::optional<TaskInformation> taskInformation() override {
        read();
        return stat_ ? taskInformationOf(*stat_) : std::nullopt;
    }

    std::string_view command() override {
        read();
        return stat_ ? stat_->command : std::string_view();
    }

 private:
    void read() {
        if (std::exchange(isRead_, true)) {
            return;
        }
        if (const std::optional<std::string_view> text = files_.read(identifier_)) {
            stat_ = parseProcessStat(*text);
        }
    }

    KeptProcessFiles& files_;
    std::int32_t identifier_;
    bool isRead_ = false;
    std::optional<ProcessStat> stat_;
};

// Target of a symbolic link, any bytes; absent if it cannot be read.
std::optional<std::string> targetOf(const std::string& link) {
    std::array<char, 4096> target;
    const ssize_t size = ::readlink(link.c_str(), target.data(), target.size());
    if (size <= 0) {
        return std::nullopt;
    }
    return std::string(target.data(), static_cast<std::size_t>(size));
}

}  // namespace

bool listProcessIdentifiers(const std::string& folder, std::vector<std::int32_t>& identifiers) {
    identifiers.clear();
    struct Close {
        void operator()(DIR* opened) const { ::closedir(opened); }
    };
    const std::unique_ptr<DIR, Close> opened(::opendir(folder.c_str()));
    if (!opened) {
        return false;
    }
    errno = 0;
    while (const dirent* entry = ::readdir(opened.get())) {
        if (const std::int32_t identifier = parseProcessIdentifier(entry->d_name)) {
            identifiers.push_back(identifier);
        }
    }
    const bool isWhole = errno == 0;
    // The kernel lists them in order; other file systems may not.
    if (!std::ranges::is_sorted(identifiers)) {
        std::ranges::sort(identifiers);
    }
    return isWhole;
}

LinuxProcessTable::LinuxProcessTable(std::string root, Workers& workers)
    : LinuxProcessTable(std::move(root),
                        applicationSources([](const char* name) { return std::getenv(name); }),
                        workers) {}

LinuxProcessTable::LinuxProcessTable(std::string root, ApplicationSources applications,
                                     Workers& workers)
    : root_(std::move(root)),
      sources_(std::move(applications)),
      folders_(workers, kSensorPatience, 0) {}

ProcessListing LinuxProcessTable::forEachProcess(const Visit& visit) {
    const std::lock_guard guard(walkLock_);
    const std::string folder = belowRoot(root_, "proc");
    const FileDescriptor opened(folder);
    if (!opened.isOpen() || !listProcessIdentifiers(folder, identifiers_)) {
        // Perhaps no descriptor is left. The next attempt can use those of the kept files.
        files_.release();
        return ProcessListing::noList;
    }
    files_.beginWalk(opened);
    for (const std::int32_t identifier : identifiers_) {
        ListedProcess process(files_, identifier);
        visit(process);
    }
    files_.endWalk();
    return ProcessListing::complete;
}

std::int32_t LinuxProcessTable::ownIdentifier() {
    const std::optional<std::string> target = targetOf(belowRoot(root_, "proc/self"));
    return target ? parseProcessIdentifier(*target) : 0;
}

std::int64_t LinuxProcessTable::processorCount() {
    return OnlineProcessors(root_).count().value_or(0);
}

std::optional<TimebaseInfo> LinuxProcessTable::timebaseInfo() {
    return TimebaseInfo{.numer = 1, .denom = 1};
}

std::optional<RunningApplication> LinuxProcessTable::runningApplication(std::int32_t identifier) {
    const std::optional<std::string> cgroups = readWholeFile(pathOf(identifier, "cgroup"));
    const std::optional<ApplicationUnit> unit = applicationUnit(cgroups.value_or(""));
    if (!unit || !isOfFirstProgram(identifier, unit->group)) {
        return std::nullopt;
    }
    const std::lock_guard guard(entriesLock_);
    for (const std::string& name : unit->entries) {
        if (const std::optional<DesktopEntry> entry = entryNamed(name)) {
            return RunningApplication{
                .activationPolicy = entry->isShown ? RunningApplication::kRegularPolicy
                                                   : RunningApplication::kAccessoryPolicy,
                .localizedName = entry->name};
        }
    }
    return std::nullopt;
}

std::optional<DesktopEntry> LinuxProcessTable::entryNamed(const std::string& name) {
    if (const auto known = entries_.find(name); known != entries_.end()) {
        return known->second;
    }
    // Copies, because a worker that hangs may outlive this object.
    const auto answer = folders_.read([root = root_, sources = sources_, name] {
        const auto text = desktopEntryFile(root, sources.dataFolders, name);
        return text ? parseDesktopEntry(*text, sources.localeSuffixes) : std::nullopt;
    });
    if (!answer) {
        return std::nullopt;
    }
    return entries_[name] = *answer;
}

bool LinuxProcessTable::isOfFirstProgram(std::int32_t identifier, const std::string& group) {
    std::string members;
    for (const char* const groups : {"sys/fs/cgroup", "sys/fs/cgroup/systemd"}) {
        members += readWholeFile(belowRoot(root_, groups + group + "/cgroup.procs")).value_or("");
    }
    // In the order in which they came into the group.
    for (const std::string_view member : listItems(members, '\n')) {
        const std::int32_t first = parseProcessIdentifier(member);
        const std::optional<std::string> program = executablePath(first);
        if (first == 0 || (program && isStarter(*program))) {
            continue;
        }
        const std::optional<std::string> own = executablePath(identifier);
        return first == identifier || (program && own && belongsTo(*own, *program));
    }
    // The group cannot be read, has groups of its own, or holds nothing but a script.
    return true;
}

std::string LinuxProcessTable::commandLine(std::int32_t identifier) {
    std::string line = readWholeFile(pathOf(identifier, "cmdline")).value_or("");
    // Each argument ends with a zero. Programs that rename themselves may leave any number of them.
    line.erase(line.find_last_not_of('\0') + 1);
    std::replace(line.begin(), line.end(), '\0', ' ');
    return line;
}

std::optional<std::string> LinuxProcessTable::executablePath(std::int32_t identifier) {
    std::optional<std::string> path = targetOf(pathOf(identifier, "exe"));
    constexpr std::string_view mark = " (deleted)";
    if (path && path->size() > mark.size() && path->ends_with(mark)) {
        path->resize(path->size() - mark.size());
    }
    constexpr std::string_view memory = "/memfd:";
    if (path && path->starts_with(memory)) {
        path->erase(0, memory.size());
        if (path->empty() || path->find('/') != std::string::npos) {
            return std::nullopt;
        }
    }
    return path;
}

std::string LinuxProcessTable::displayName(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
}

void LinuxProcessTable::releaseCaches() {
    {
        const std::lock_guard guard(walkLock_);
        files_.release();
        identifiers_ = std::vector<std::int32_t>();
    }
    const std::lock_guard guard(entriesLock_);
    entries_.clear();
}

std::string LinuxProcessTable::pathOf(std::int32_t identifier, const char* file) const {
    return belowRoot(root_, "proc/" + std::to_string(identifier) + "/" + file);
}

}  // namespace tarnwick::platform
