#include "platform/linux/settings/sqlite_user_defaults.h"

#include <system_error>
#include <utility>

#include "platform/linux/settings/sqlite_user_defaults_connection.h"
#include "platform/linux/settings/sqlite_user_defaults_file.h"

namespace tarnwick::platform {
namespace {

using Connection = SqliteUserDefaultsConnection;
using Error = SqliteUserDefaultsError;
using Kind = Error::Kind;

/// How often a bad file is moved, or found moved by others, before an access gives up.
constexpr int kAttempts = 3;

/// The file itself is to blame, and a fresh one would help.
bool isBad(const Error& error) {
    return error.kind() == Kind::damaged || error.kind() == Kind::foreign;
}

bool isAbsolute(const char* path) {
    return path != nullptr && path[0] == '/';
}

}  // namespace

std::filesystem::path userDefaultsFile(const Environment& environment) {
    const std::filesystem::path place = std::filesystem::path("tarnwick") / "settings.sqlite";
    if (const char* data = environment("XDG_DATA_HOME"); isAbsolute(data)) {
        return data / place;
    }
    if (const char* home = environment("HOME"); isAbsolute(home)) {
        return std::filesystem::path(home) / ".local" / "share" / place;
    }
    return {};
}

SqliteUserDefaults::SqliteUserDefaults(std::filesystem::path file, Notice notice,
                                       std::chrono::milliseconds patience)
    : file_(std::move(file)), notice_(std::move(notice)), patience_(patience) {}

SqliteUserDefaults::~SqliteUserDefaults() {
    close();
}

void SqliteUserDefaults::close() {
    const std::lock_guard guard(lock_);
    if (!pending_.empty()) {
        patient_ = true;
        flush();
    }
    if (connection_) {
        connection_->checkpoint();
        connection_.reset();
    }
}

std::optional<DefaultsValue> SqliteUserDefaults::object(std::string_view key) {
    const std::lock_guard guard(lock_);
    return find(key).value;
}

bool SqliteUserDefaults::contains(std::string_view key) {
    const std::lock_guard guard(lock_);
    return find(key).mayBeStored;
}

void SqliteUserDefaults::set(std::string_view key, const DefaultsValue& value) {
    const std::lock_guard guard(lock_);
    pending_.insert_or_assign(std::string(key), value);
    flush();
}

/// Runs `work` on a connection that tells the truth, making one where there is none.
template <class Work>
auto SqliteUserDefaults::withConnection(const Work& work) {
    for (bool last = false;; last = true) {
        if (connection_ && !connection_->isCurrent()) {
            connection_.reset();
            known_.clear();
        }
        try {
            if (!connection_) {
                connect();
            }
            connection_->setPatience(patience());
            return work(*connection_);
        } catch (const Error& error) {
            if (error.kind() == Kind::busy) {
                patient_ = false;
            }
            // A new connection has a thorough look first, so that only its word counts.
            const bool worthAnother = connection_ != nullptr && isBad(error) && !last;
            if (error.kind() != Kind::busy && error.kind() != Kind::refused) {
                connection_.reset();
            }
            if (!worthAnother) {
                throw;
            }
        }
    }
}

SqliteUserDefaults::Finding SqliteUserDefaults::find(std::string_view key) {
    if (!pending_.empty()) {
        flush();
    }
    if (const auto held = pending_.find(key); held != pending_.end()) {
        return {true, held->second};
    }
    try {
        const auto row =
            withConnection([key](Connection& connection) { return connection.read(key); });
        if (pending_.empty()) {
            patient_ = true;
        } else if (const auto held = pending_.find(key); held != pending_.end()) {
            // The file was damaged; what was known of it is on its way into a fresh one.
            return {true, held->second};
        }
        if (!row) {
            remember(key, std::nullopt);
            return {false, std::nullopt};
        }
        if (!row->value) {
            tell(file_.native() + " has a value under \"" + std::string(key) +
                 "\" that cannot be read; it is left there and the default is used");
        }
        remember(key, row->value);
        return {true, row->value};
    } catch (const Error& error) {
        if (!isBad(error)) {
            tellTrouble("read", error, "the values last known or the defaults are used");
        }
        const auto last = known_.find(key);
        return {last != known_.end() || !isSurelyAbsent(file_),
                last == known_.end() ? std::nullopt : std::optional(last->second)};
    }
}

void SqliteUserDefaults::remember(std::string_view key, const std::optional<DefaultsValue>& value) {
    const auto known = known_.find(key);
    if (!value) {
        if (known != known_.end()) {
            known_.erase(known);
        }
    } else if (known == known_.end()) {
        known_.emplace(key, *value);
    } else {
        known->second = *value;
    }
}

/// Writes what is pending; where that fails, says so and keeps it.
void SqliteUserDefaults::flush() {
    try {
        withConnection([this](Connection& connection) { connection.write(pending_); });
        patient_ = true;
        for (const auto& [key, value] : pending_) {
            remember(key, value);
        }
        pending_.clear();
    } catch (const Error& error) {
        if (!isBad(error)) {
            tellTrouble("written", error,
                        "changes are kept in memory and written as soon as they can be");
        }
    }
}

void SqliteUserDefaults::connect() {
    if (file_.empty()) {
        throw Error(Kind::unavailable, "there is no home directory");
    }
    std::error_code ignored;
    const auto resolved = std::filesystem::weakly_canonical(file_, ignored);
    const std::filesystem::path& file = ignored ? file_ : resolved;
    for (int attempt = 1;; ++attempt) {
        const auto judged = identityOf(file);
        try {
            connection_ = std::make_unique<Connection>(file, patience());
            return;
        } catch (const Error& error) {
            if (!isBad(error) || attempt == kAttempts) {
                throw;
            }
            setAsideDamaged(file, judged, error);
        }
    }
}

/// Makes room for a fresh file, which gets what this process still knows; throws `error` where the
/// file cannot be moved.
void SqliteUserDefaults::setAsideDamaged(const std::filesystem::path& file,
                                         const std::optional<FileIdentity>& judged,
                                         const Error& error) {
    const std::string start =
        file.native() +
        (error.kind() == Kind::foreign ? " belongs to another program and " : " is damaged and ");
    const SetAside moved = setAside(file, judged);
    if (moved.error) {
        tell(start + "cannot be moved away (" + moved.error.message() +
             "); changes are lost when the program ends");
        throw error;
    }
    if (moved.movedTo) {
        tell(start + "was moved to " + moved.movedTo->native() + "; a new file is begun");
        pending_.insert(known_.begin(), known_.end());
    }
}

std::chrono::milliseconds SqliteUserDefaults::patience() const {
    return patient_ ? patience_ : std::chrono::milliseconds(0);
}

void SqliteUserDefaults::tellTrouble(const char* undone, const Error& error,
                                     const char* consequence) {
    if (file_.empty()) {
        tell("there is no home directory to keep them in; changes are lost when the program ends");
    } else {
        tell(file_.native() + " cannot be " + undone + " (" + error.what() + "); " + consequence);
    }
}

void SqliteUserDefaults::tell(const std::string& line) {
    if (told_.insert(line).second) {
        notice_("settings: " + line);
    }
}

}  // namespace tarnwick::platform
