// SPDX-License-Identifier: MIT
// The processes of /proc and the applications that the session says they belong to.
#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/applications/desktop_entry.h"
#include "platform/linux/applications/installed_applications.h"
#include "platform/linux/processes/kept_process_files.h"
#include "platform/process_table.h"
#include "platform/timed_source.h"
#include "platform/workers.h"

namespace tarnwick::platform {

/// Fills `identifiers` with those of the processes in a folder like /proc, rising. False when it
/// cannot be read; then there may be some of them.
bool listProcessIdentifiers(const std::string& folder, std::vector<std::int32_t>& identifiers);

/// Reads the tree below `root`. A walk reads the stat file of a process once, if its task
/// information is requested, and keeps the file open for the next walk if the program's limit of
/// descriptors allows it. Any thread; walks take turns.
class LinuxProcessTable final : public ProcessTable {
 public:
    /// Uses the applications of this user's environment. Their entries may lie on a disk that
    /// hangs, so one of `workers` reads them. Requires: `workers` outlives this object.
    explicit LinuxProcessTable(std::string root = "/", Workers& workers = noWorkers());
    LinuxProcessTable(std::string root, ApplicationSources applications,
                      Workers& workers = noWorkers());

    /// Visits the processes in the order of rising identifiers. A process that ends before it is
    /// read is visited without task information. Resident memory is in bytes, times are in
    /// nanoseconds.
    ProcessListing forEachProcess(const Visit& visit) override;
    /// The program's number in /proc/self.
    std::int32_t ownIdentifier() override;
    /// Number of online processors.
    std::int64_t processorCount() override;
    /// Always 1 / 1.
    std::optional<TimebaseInfo> timebaseInfo() override;
    /// From the desktop entry of the unit in which the process runs, if the process belongs to the
    /// first program in that unit: what runs in a terminal is not the terminal. An application that
    /// no menu shows is an accessory. Absent also while its entry cannot be read.
    std::optional<RunningApplication> runningApplication(std::int32_t identifier) override;
    /// Absent for the kernel's threads and for processes of other users. If the file was replaced,
    /// this is its old path. For a program that lies in memory only, this is its name there.
    std::optional<std::string> executablePath(std::int32_t identifier) override;
    std::string commandLine(std::int32_t identifier) override;
    /// What follows the last slash of the path.
    std::string displayName(const std::string& path) override;
    /// Closes the files and forgets the desktop entries.
    void releaseCaches() override;

 private:
    /// `group` is the path of the unit's control group. Shells and sandboxes that start the first
    /// program are passed over.
    bool isOfFirstProgram(std::int32_t identifier, const std::string& group);
    /// Absent where there is none, or it is not known. Requires: entriesLock_ is held.
    std::optional<DesktopEntry> entryNamed(const std::string& name);
    std::string pathOf(std::int32_t identifier, const char* file) const;

    const std::string root_;

    std::mutex walkLock_;
    // Guarded by walkLock_.
    std::vector<std::int32_t> identifiers_;
    KeptProcessFiles files_;

    const ApplicationSources sources_;
    std::mutex entriesLock_;
    // Guarded by entriesLock_.
    /// The desktop entries that were looked for, also those that are not there, by their names.
    std::map<std::string, std::optional<DesktopEntry>> entries_;
    TimedSource<std::optional<DesktopEntry>> folders_;
};

}  // namespace tarnwick::platform
