#include "platform/linux/settings/sqlite_user_defaults_connection.h"

#include <cerrno>
#include <cstring>
#include <limits>
#include <sqlite3.h>
#include <utility>

#include "platform/linux/files/folders.h"

namespace tarnwick::platform {
namespace {

using Error = SqliteUserDefaultsError;
using Kind = Error::Kind;

/// "TRNW" in the file's header tells the program's stores from other databases.
constexpr std::int64_t kApplicationId = 0x54524E57;
constexpr std::int64_t kSchemaVersion = 1;

/// Bytes of a database with one page of the smallest size there is.
constexpr off_t kSmallestDatabase = 512;

constexpr const char* kSelect = "SELECT type, value FROM defaults WHERE key = ?1";
constexpr const char* kUpsert =
    "INSERT INTO defaults (key, type, value) VALUES (?1, ?2, ?3) "
    "ON CONFLICT (key) DO UPDATE SET type = excluded.type, value = excluded.value";

/// Ends a statement's transaction and forgets its parameters on the way out.
class Use {
 public:
    explicit Use(sqlite3_stmt* statement) : statement_(statement) {}
    Use(const Use&) = delete;
    Use& operator=(const Use&) = delete;
    ~Use() {
        sqlite3_reset(statement_);
        sqlite3_clear_bindings(statement_);
    }

 private:
    sqlite3_stmt* statement_;
};

/// The text stays with the caller until the statement is reset.
int bindText(sqlite3_stmt* statement, int index, std::string_view text) {
    const char* bytes = text.empty() ? "" : text.data();
    return sqlite3_bind_text64(statement, index, bytes, text.size(), SQLITE_STATIC, SQLITE_UTF8);
}

/// Binds parameters 2 and 3. SQLite itself keeps what is not a number as NULL.
struct Binder {
    sqlite3_stmt* statement;

    int operator()(bool value) const {
        return typed("bool", sqlite3_bind_int(statement, 3, value ? 1 : 0));
    }
    int operator()(std::int64_t value) const {
        return typed("integer", sqlite3_bind_int64(statement, 3, value));
    }
    int operator()(double value) const {
        return typed("double", sqlite3_bind_double(statement, 3, value));
    }
    int operator()(const std::string& value) const {
        return typed("text", bindText(statement, 3, value));
    }
    int operator()(const Date& value) const {
        return typed("date", sqlite3_bind_double(statement, 3, value.secondsSince1970));
    }

 private:
    int typed(std::string_view type, int result) const {
        return result == SQLITE_OK ? bindText(statement, 2, type) : result;
    }
};

std::string columnText(sqlite3_stmt* statement, int column) {
    const unsigned char* bytes = sqlite3_column_text(statement, column);
    const int size = sqlite3_column_bytes(statement, column);
    std::string text(static_cast<std::size_t>(size), '\0');
    if (size > 0) {
        std::memcpy(text.data(), bytes, text.size());
    }
    return text;
}

/// Type in column 0, value in column 1; absent when they do not fit together.
std::optional<DefaultsValue> decode(sqlite3_stmt* row) {
    if (sqlite3_column_type(row, 0) != SQLITE_TEXT) {
        return std::nullopt;
    }
    const std::string type = columnText(row, 0);
    const int storage = sqlite3_column_type(row, 1);
    if (type == "text" && storage == SQLITE_TEXT) {
        return columnText(row, 1);
    }
    if (storage == SQLITE_INTEGER) {
        const std::int64_t value = sqlite3_column_int64(row, 1);
        if (type == "integer") {
            return value;
        }
        if (type == "bool" && (value == 0 || value == 1)) {
            return value == 1;
        }
        return std::nullopt;
    }
    if (storage == SQLITE_FLOAT || storage == SQLITE_NULL) {
        const double value = storage == SQLITE_NULL ? std::numeric_limits<double>::quiet_NaN()
                                                    : sqlite3_column_double(row, 1);
        if (type == "double") {
            return value;
        }
        if (type == "date") {
            return Date{value};
        }
    }
    return std::nullopt;
}

/// Memory for pages is asked for page by page: each store has a few, and SQLite would set memory
/// for twenty aside for each cache. Counts for the whole program, before it opens its first store.
void keepPagesOneByOne() {
    [[maybe_unused]] static const int once = sqlite3_config(SQLITE_CONFIG_PAGECACHE, nullptr, 0, 0);
}

/// A file that is never written needs no locks and no companions beside it.
std::string immutableURI(const std::filesystem::path& file) {
    std::string uri = "file:";
    for (const char character : file.native()) {
        if (character == '%') {
            uri += "%25";
        } else if (character == '?') {
            uri += "%3f";
        } else if (character == '#') {
            uri += "%23";
        } else {
            uri += character;
        }
    }
    return uri + "?immutable=1";
}

}  // namespace

void SqliteUserDefaultsConnection::Closer::operator()(sqlite3* database) const {
    sqlite3_close_v2(database);
}

void SqliteUserDefaultsConnection::Closer::operator()(sqlite3_stmt* statement) const {
    sqlite3_finalize(statement);
}

SqliteUserDefaultsConnection::SqliteUserDefaultsConnection(const std::filesystem::path& file,
                                                           std::chrono::milliseconds patience)
    : file_(file) {
    if (const std::error_code error = makeFolder(file.parent_path())) {
        throw Error(Kind::unavailable, error.message());
    }
    // Nobody moves or begins the file meanwhile. SQLite finds a file's log and journal by its name:
    // a bad file that is being opened under a name that passes to a fresh one would be taken for
    // the fresh one's, and truncated. And of several that begin one file, SQLite lets some fail
    // instead of wait.
    const FolderLock alone(file.parent_path());
    identify();
    if (const std::error_code obstacle = obstacleToWriting(file)) {
        if (!identity_) {
            throw Error(Kind::unavailable, obstacle.message());
        }
        readOnly_ = obstacle.message();
    }
    try {
        open(patience);
    } catch (const Error& error) {
        // Closed while nobody else can take the file's name.
        select_.reset();
        upsert_.reset();
        database_.reset();
        const bool isFileGood = error.kind() == Kind::refused || error.kind() == Kind::unavailable;
        if (!isFileGood || readOnly_ || !identity_ || hasWriteAheadLog(file)) {
            throw;
        }
        // Without space for the companions, the file alone can still be read.
        readOnly_ = error.what();
        open(patience);
    }
}

/// What must be known before SQLite has a look.
void SqliteUserDefaultsConnection::identify() {
    identity_ = identityOf(file_);
    if (std::error_code error; identity_ && !std::filesystem::is_regular_file(file_, error)) {
        throw Error(Kind::unavailable, "not a file");
    }
    if ((!identity_ || identity_->size == 0) && hasWriteAheadLog(file_)) {
        // SQLite would throw away the log, which may hold everything there was.
        throw Error(Kind::damaged, "only its log is left");
    }
    if (identity_ && identity_->size > 0 && identity_->size < kSmallestDatabase) {
        // SQLite takes a file of one byte for an empty one.
        throw Error(Kind::damaged, "too short");
    }
}

void SqliteUserDefaultsConnection::open(std::chrono::milliseconds patience) {
    connect();
    setPatience(patience);
    // What is found damaged is to be left as it is, its log included.
    const int keepLog = hasWriteAheadLog(file_) ? 1 : 0;
    sqlite3_db_config(database_.get(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, keepLog, nullptr);
    execute("PRAGMA cache_size = 8");
    execute("PRAGMA mmap_size = 0");
    examine();
    prepareStatements();
    sqlite3_db_config(database_.get(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 0, nullptr);
}

void SqliteUserDefaultsConnection::connect() {
    std::string name = file_.native();
    int flags = SQLITE_OPEN_NOMUTEX;
    if (!readOnly_) {
        flags |= SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
    } else if (hasWriteAheadLog(file_)) {
        flags |= SQLITE_OPEN_READONLY;
    } else {
        flags |= SQLITE_OPEN_READONLY | SQLITE_OPEN_URI;
        name = immutableURI(file_);
    }
    keepPagesOneByOne();
    sqlite3* database = nullptr;
    const int opened = sqlite3_open_v2(name.c_str(), &database, flags, nullptr);
    database_.reset(database);
    if (opened != SQLITE_OK) {
        fail(opened);
    }
    if (!identity_) {
        identity_ = identityOf(file_);
    }
    sqlite3_extended_result_codes(database, 1);
    // A few pages hold everything; what SQLite would set aside for speed is not worth its memory.
    sqlite3_db_config(database, SQLITE_DBCONFIG_LOOKASIDE, nullptr, 0, 0);
}

void SqliteUserDefaultsConnection::prepareStatements() {
    select_ = prepare(kSelect);
    if (!readOnly_ && !newer_) {
        execute("PRAGMA journal_mode = WAL");
        execute("PRAGMA synchronous = FULL");
        execute("PRAGMA wal_autocheckpoint = 64");
        upsert_ = prepare(kUpsert);
    }
}

bool SqliteUserDefaultsConnection::isCurrent() const {
    const auto present = identityOf(file_);
    if (!present || !identity_ || !present->isSameFile(*identity_)) {
        return false;
    }
    return !readOnly_ || (present->isUnchanged(*identity_) && obstacleToWriting(file_));
}

void SqliteUserDefaultsConnection::setPatience(std::chrono::milliseconds patience) {
    sqlite3_busy_timeout(database_.get(), static_cast<int>(patience.count()));
}

std::optional<SqliteUserDefaultsConnection::Row> SqliteUserDefaultsConnection::read(
    std::string_view key) {
    const Use use(select_.get());
    if (const int code = bindText(select_.get(), 1, key); code != SQLITE_OK) {
        fail(code);
    }
    const int code = sqlite3_step(select_.get());
    if (code == SQLITE_ROW) {
        return Row{decode(select_.get())};
    }
    if (code != SQLITE_DONE) {
        fail(code);
    }
    return std::nullopt;
}

void SqliteUserDefaultsConnection::write(const Values& values) {
    if (newer_) {
        throw Error(Kind::refused, "a newer version wrote it");
    }
    if (readOnly_) {
        throw Error(Kind::refused, *readOnly_);
    }
    try {
        execute("BEGIN IMMEDIATE");
        for (const auto& [key, value] : values) {
            const Use use(upsert_.get());
            int code = bindText(upsert_.get(), 1, key);
            if (code == SQLITE_OK) {
                code = std::visit(Binder{upsert_.get()}, value);
            }
            if (code == SQLITE_OK) {
                code = sqlite3_step(upsert_.get());
            }
            if (code != SQLITE_DONE) {
                fail(code);
            }
        }
        execute("COMMIT");
    } catch (const Error& error) {
        sqlite3_exec(database_.get(), "ROLLBACK", nullptr, nullptr, nullptr);
        if (error.kind() == Kind::unavailable) {
            // Nothing is wrong with reading.
            throw Error(Kind::refused, error.what());
        }
        throw;
    }
}

void SqliteUserDefaultsConnection::checkpoint() {
    sqlite3_wal_checkpoint_v2(database_.get(), nullptr, SQLITE_CHECKPOINT_PASSIVE, nullptr,
                              nullptr);
}

/// Finds out whose file this is, and begins a store in an empty one.
void SqliteUserDefaultsConnection::examine() {
    // One transaction, should another process begin the file at this moment. Where a question
    // fails, the connection is given up and the transaction with it.
    execute("BEGIN");
    const std::int64_t application = number("PRAGMA application_id");
    const std::int64_t version = number("PRAGMA user_version");
    const bool empty = number("SELECT count(*) FROM sqlite_master") == 0;
    execute("COMMIT");
    if (application == 0 && version == 0 && empty) {
        begin();
        return;
    }
    if (application != kApplicationId) {
        throw Error(Kind::foreign, "another program's");
    }
    newer_ = version > kSchemaVersion;
    if (!newer_) {
        requireSoundInsides();
    }
}

void SqliteUserDefaultsConnection::begin() {
    if (readOnly_) {
        throw Error(Kind::refused, *readOnly_);
    }
    execute("PRAGMA journal_mode = WAL");
    execute("PRAGMA synchronous = FULL");
    execute("BEGIN IMMEDIATE");
    try {
        // Should another process have been faster, these change nothing.
        execute(
            "CREATE TABLE IF NOT EXISTS defaults "
            "(key TEXT PRIMARY KEY NOT NULL, type TEXT NOT NULL, value) WITHOUT ROWID");
        execute(("PRAGMA application_id = " + std::to_string(kApplicationId)).c_str());
        execute(("PRAGMA user_version = " + std::to_string(kSchemaVersion)).c_str());
        execute("COMMIT");
    } catch (...) {
        sqlite3_exec(database_.get(), "ROLLBACK", nullptr, nullptr, nullptr);
        throw;
    }
}

void SqliteUserDefaultsConnection::requireSoundInsides() {
    const Statement check = prepare("PRAGMA quick_check(1)");
    const int code = sqlite3_step(check.get());
    if (code != SQLITE_ROW) {
        fail(code);
    }
    if (columnText(check.get(), 0) != "ok") {
        throw Error(Kind::damaged, "damaged");
    }
}

std::int64_t SqliteUserDefaultsConnection::number(const char* sql) {
    const Statement statement = prepare(sql);
    const int code = sqlite3_step(statement.get());
    if (code != SQLITE_ROW) {
        fail(code);
    }
    return sqlite3_column_int64(statement.get(), 0);
}

void SqliteUserDefaultsConnection::execute(const char* sql) {
    if (const int code = sqlite3_exec(database_.get(), sql, nullptr, nullptr, nullptr);
        code != SQLITE_OK) {
        fail(code);
    }
}

SqliteUserDefaultsConnection::Statement SqliteUserDefaultsConnection::prepare(const char* sql) {
    sqlite3_stmt* statement = nullptr;
    const int code = sqlite3_prepare_v3(database_.get(), sql, -1, SQLITE_PREPARE_PERSISTENT,
                                        &statement, nullptr);
    Statement prepared(statement);
    if (code != SQLITE_OK) {
        fail(code);
    }
    return prepared;
}

void SqliteUserDefaultsConnection::fail(int code) const {
    const Kind damage = newer_ ? Kind::refused : Kind::damaged;
    switch (code & 0xFF) {
        case SQLITE_NOTADB:
        case SQLITE_CORRUPT:
            throw Error(damage, "damaged");
        case SQLITE_ERROR:
            throw Error(damage, newer_ ? "a newer version wrote it" : "not the expected tables");
        case SQLITE_BUSY:
            throw Error(Kind::busy, "another program holds it");
        case SQLITE_FULL:
            throw Error(Kind::refused, "the disk is full");
        default:
            break;
    }
    const int system = database_ ? sqlite3_system_errno(database_.get()) : 0;
    if (system == ENOSPC || system == EDQUOT) {
        throw Error(Kind::unavailable, "the disk is full");
    }
    throw Error(Kind::unavailable,
                system != 0 ? std::generic_category().message(system) : sqlite3_errstr(code));
}

}  // namespace tarnwick::platform
