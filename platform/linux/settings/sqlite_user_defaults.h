// The per-user store in a file: SQLite, one table of typed values.
#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "platform/linux/events/standard_error.h"
#include "platform/user_defaults.h"

namespace tarnwick::platform {

class SqliteUserDefaultsConnection;
class SqliteUserDefaultsError;
struct FileIdentity;

/// Value of an environment variable by name, null when it is not set; std::getenv is one.
using Environment = std::function<const char*(const char*)>;

/// Where the program keeps its settings: tarnwick/settings.sqlite under $XDG_DATA_HOME or, where
/// that is not an absolute path, under ~/.local/share. Empty when there is no home directory
/// either.
std::filesystem::path userDefaultsFile(const Environment& environment);

/// Reads go through to the file and each write is one transaction on the disk when it returns, so
/// several processes agree. Any thread.
///
/// A file that cannot be written (full disk, read-only, locked, no home directory) makes nothing
/// fail: the values are kept in memory for every reader of this object and written with the next
/// access that gets through. While the file cannot be read, the values last seen are answered. A
/// damaged file, or one of another program, is moved to a free name beside it, and a fresh one is
/// begun. A file of a newer version of the program is read as far as possible and left as it is.
/// The user is told about each of these things in one line, once.
class SqliteUserDefaults final : public UserDefaults {
 public:
    using Notice = std::function<void(std::string_view)>;

    /// Touches the disk only with the first access. `file` empty means that there is no place for
    /// a file. `patience` is how long an access waits for another process that holds the file;
    /// once one has waited in vain, none waits until one got through.
    explicit SqliteUserDefaults(std::filesystem::path file, Notice notice = &platform::notice,
                                std::chrono::milliseconds patience = kPatience);
    /// close()
    ~SqliteUserDefaults() override;

    std::optional<DefaultsValue> object(std::string_view key) override;
    void set(std::string_view key, const DefaultsValue& value) override;
    /// Says yes, too, where the file cannot be read and may hold the key.
    bool contains(std::string_view key) override;
    /// For the end of the program: tries once more, patiently, to write what is only in memory, and
    /// closes the file, which then holds everything by itself and can be copied. A later access
    /// opens it again.
    void close();

    static constexpr std::chrono::milliseconds kPatience{250};

 private:
    using Values = std::map<std::string, DefaultsValue, std::less<>>;
    /// What is known about a key.
    struct Finding {
        bool mayBeStored = false;
        std::optional<DefaultsValue> value;
    };

    Finding find(std::string_view key);
    void remember(std::string_view key, const std::optional<DefaultsValue>& value);
    void flush();
    template <class Work>
    auto withConnection(const Work& work);
    void connect();
    void setAsideDamaged(const std::filesystem::path& file,
                         const std::optional<FileIdentity>& judged,
                         const SqliteUserDefaultsError& error);
    std::chrono::milliseconds patience() const;
    void tellTrouble(const char* undone, const SqliteUserDefaultsError& error,
                     const char* consequence);
    void tell(const std::string& line);

    std::mutex lock_;
    const std::filesystem::path file_;
    const Notice notice_;
    const std::chrono::milliseconds patience_;
    /// Whether an access waits for others; not after one has waited in vain.
    bool patient_ = true;
    std::unique_ptr<SqliteUserDefaultsConnection> connection_;
    /// Not yet in the file.
    Values pending_;
    /// As last seen in the file.
    Values known_;
    std::set<std::string, std::less<>> told_;
};

}  // namespace tarnwick::platform
