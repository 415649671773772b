// One connection to the store's file, with what may go wrong on it.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "platform/linux/settings/sqlite_user_defaults_file.h"
#include "platform/user_defaults.h"

struct sqlite3;
struct sqlite3_stmt;

namespace tarnwick::platform {

/// Why an access did not get through; what() is the reason in a few plain words.
class SqliteUserDefaultsError final : public std::runtime_error {
 public:
    enum class Kind {
        /// Not a database, or one whose insides do not hold together.
        damaged,
        /// A sound database that somebody else made for something else.
        foreign,
        /// Another process holds the file.
        busy,
        /// The file takes nothing now: full disk, no permission, a newer version's.
        refused,
        /// Everything else that comes from the machine.
        unavailable,
    };

    SqliteUserDefaultsError(Kind kind, const std::string& reason)
        : std::runtime_error(reason), kind_(kind) {}
    Kind kind() const { return kind_; }

 private:
    Kind kind_;
};

/// Every operation throws SqliteUserDefaultsError. One thread at a time.
class SqliteUserDefaultsConnection {
 public:
    using Values = std::map<std::string, DefaultsValue, std::less<>>;
    struct Row {
        /// Absent when type and value make no sense together.
        std::optional<DefaultsValue> value;
    };

    /// Opens `file`, makes a fresh store of a missing or empty one and has a look at the insides of
    /// any other. Read-only where nothing can be written.
    SqliteUserDefaultsConnection(const std::filesystem::path& file,
                                 std::chrono::milliseconds patience);
    SqliteUserDefaultsConnection(const SqliteUserDefaultsConnection&) = delete;
    SqliteUserDefaultsConnection& operator=(const SqliteUserDefaultsConnection&) = delete;

    /// False once the file has been moved, removed or replaced, or a read-only one has changed or
    /// can be written now: then only a new connection tells the truth.
    bool isCurrent() const;
    /// How long an operation waits for another process.
    void setPatience(std::chrono::milliseconds patience);

    /// Absent when there is no such row.
    std::optional<Row> read(std::string_view key);
    /// Writes all values or none; on the disk when it returns.
    void write(const Values& values);
    /// Brings what is only in the log into the file, as far as no other process hinders it.
    void checkpoint();

 private:
    struct Closer {
        void operator()(sqlite3* database) const;
        void operator()(sqlite3_stmt* statement) const;
    };
    using Statement = std::unique_ptr<sqlite3_stmt, Closer>;

    void identify();
    void open(std::chrono::milliseconds patience);
    void connect();
    void examine();
    void begin();
    void prepareStatements();
    void requireSoundInsides();
    std::int64_t number(const char* sql);
    void execute(const char* sql);
    Statement prepare(const char* sql);
    [[noreturn]] void fail(int code) const;

    std::filesystem::path file_;
    /// Why nothing can be written; absent where it can.
    std::optional<std::string> readOnly_;
    bool newer_ = false;
    std::optional<FileIdentity> identity_;
    std::unique_ptr<sqlite3, Closer> database_;
    Statement select_;
    Statement upsert_;
};

}  // namespace tarnwick::platform
