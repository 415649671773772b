// The processes of /proc and the applications that the session says they belong to.
#pragma once

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/applications/installed_applications.h"
#include "platform/linux/processes/kept_process_files.h"
#include "platform/process_table.h"

namespace tarnwick::platform {

/// Reads the tree below a root. A walk reads the stat file of each process whose task information
/// is asked for once, and keeps it open for the next walk as far as the program's limit of
/// descriptors allows. Any thread; walks take turns.
class LinuxProcessTable final : public ProcessTable {
 public:
    /// With the applications of this user's environment.
    explicit LinuxProcessTable(std::string root = "/");
    LinuxProcessTable(std::string root, ApplicationSources applications);

    /// Rising identifiers. A process that ends before it is read is visited without task
    /// information. Resident pages are given in bytes, times in nanoseconds.
    ProcessListing forEachProcess(const Visit& visit) override;
    /// As /proc/self names the program.
    std::int32_t ownIdentifier() override;
    /// Processors that are online.
    std::int64_t processorCount() override;
    /// 1 / 1.
    std::optional<TimebaseInfo> timebaseInfo() override;
    /// The desktop entry of the unit that the process runs in. One that no menu shows is an
    /// accessory.
    std::optional<RunningApplication> runningApplication(std::int32_t identifier) override;
    /// Absent for the kernel's threads and for processes of other users. The path of a file that
    /// was replaced since is the one it had.
    std::optional<std::string> executablePath(std::int32_t identifier) override;
    /// The last piece of the path.
    std::string displayName(const std::string& path) override;
    /// Closes the files and forgets the desktop entries.
    void releaseCaches() override;

 private:
    std::string pathOf(std::int32_t identifier, const char* file) const;

    const std::string root_;

    std::mutex walkLock_;
    // Guarded by walkLock_.
    std::vector<std::int32_t> identifiers_;
    KeptProcessFiles files_;

    std::mutex applicationsLock_;
    /// Guarded by applicationsLock_.
    InstalledApplications applications_;
};

}  // namespace tarnwick::platform
