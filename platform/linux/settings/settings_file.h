// SPDX-License-Identifier: MIT
// The settings file on the disk: one look at it, and what is brought into it on the way.
#pragma once

#include <ctime>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <sys/types.h>
#include <vector>

#include "platform/linux/settings/settings_document.h"
#include "platform/user_defaults.h"

namespace tarnwick::platform {

/// tarnwick/settings.json under $XDG_CONFIG_HOME or, where that is not an absolute path, under
/// ~/.config. Empty when there is no home directory either. `environment` answers as std::getenv.
std::filesystem::path settingsFile(const std::function<const char*(const char*)>& environment);

using SettingsValues = std::map<std::string, DefaultsValue, std::less<>>;

/// Tells of changes in the folders that the settings file, and what it links to, lie in.
class SettingsWatch {
 public:
    SettingsWatch();
    SettingsWatch(const SettingsWatch&) = delete;
    SettingsWatch& operator=(const SettingsWatch&) = delete;
    ~SettingsWatch();

    /// Readable when something has happened; -1 where the system cannot tell.
    int descriptor() const { return descriptor_; }
    /// Watches `folder` or, if that is missing, the nearest folder above it, in which it will be
    /// made. Adding a folder again changes nothing. Any thread.
    void add(std::filesystem::path folder) const;
    /// Takes what has happened: whether it concerns files of these names, or a whole folder.
    bool concerns(const std::set<std::string>& names) const;

 private:
    int descriptor_;
};

/// Tells whether a file is another one or has been written; all 0 where there is none.
struct FileStamp {
    dev_t device = 0;
    ino_t inode = 0;
    off_t size = 0;
    time_t seconds = 0;
    long nanoseconds = 0;

    bool operator==(const FileStamp&) const = default;
};

struct SettingsOutcome {
    /// What is in the file now; absent where that cannot be known.
    std::optional<SettingsDocument> contents{};
    /// The changes are in there, but for those that have yielded to an edit.
    bool isWritten = false;
    /// Keys of these.
    std::set<std::string> yielded{};
    /// Of a file that holds no settings and is to be looked at again.
    std::optional<FileStamp> suspect{};
    /// The name behind all links.
    std::string fileName{};
    /// For the user.
    std::vector<std::string> lines{};
};

struct SettingsExchange {
    /// Empty where there is no place for one.
    std::filesystem::path file;
    /// What a missing or empty file stands for.
    SettingsDocument base{};
    SettingsValues changes{};
    /// Keys of changes that could not be written before. If somebody else has changed the value
    /// that the base has under one of them, that edit is the later one and stays.
    std::set<std::string> yielding{};
    /// Only a file with this stamp is moved away when it holds no settings; any when absent.
    std::optional<FileStamp> suspect{};

    /// Reads the file and puts the changes into it, and nothing but them. Blocks as long as the
    /// disk does. Begins anew where somebody else writes the file at the same moment.
    SettingsOutcome perform(const SettingsWatch& watch) const;

 private:
    /// False where it is to be begun anew.
    bool attempt(const SettingsWatch& watch, SettingsOutcome& outcome) const;
};

}  // namespace tarnwick::platform
