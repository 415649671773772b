// A database as another program accesses it: plain SQL without the store's rules.
#pragma once

#include <cstdint>
#include <filesystem>
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <string>

namespace tarnwick::testing {

class RawDatabase {
 public:
    explicit RawDatabase(const std::filesystem::path& file) {
        EXPECT_EQ(sqlite3_open(file.c_str(), &database_), SQLITE_OK);
    }
    RawDatabase(const RawDatabase&) = delete;
    RawDatabase& operator=(const RawDatabase&) = delete;
    ~RawDatabase() { sqlite3_close(database_); }

    void run(const std::string& sql) {
        EXPECT_EQ(sqlite3_exec(database_, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
            << sql << ": " << sqlite3_errmsg(database_);
    }

    /// First column of the first row as text; "NULL" for NULL, "" when there is no row.
    std::string value(const std::string& sql) {
        sqlite3_stmt* statement = nullptr;
        EXPECT_EQ(sqlite3_prepare_v2(database_, sql.c_str(), -1, &statement, nullptr), SQLITE_OK)
            << sql << ": " << sqlite3_errmsg(database_);
        std::string result;
        if (sqlite3_step(statement) == SQLITE_ROW) {
            const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, 0));
            result = text == nullptr ? "NULL" : text;
        }
        sqlite3_finalize(statement);
        return result;
    }

 private:
    sqlite3* database_ = nullptr;
};

}  // namespace tarnwick::testing
