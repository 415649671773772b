// A fixture for a store on a machine with failures, and the lines that report them.
#pragma once

#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/platform/linux/child_process.h"
#include "tests/platform/linux/settings/sqlite_user_defaults_fixture.h"

namespace tarnwick::testing {

inline constexpr uid_t kNobody = 65534;

class SqliteUserDefaultsTroubleFixture : public SqliteUserDefaultsFixture {
 protected:
    std::string notWritten(const std::string& why) const {
        return "settings: " + file.native() + " cannot be written (" + why +
               "); changes are kept in memory and written as soon as they can be";
    }
    std::string notRead(const std::string& why) const {
        return "settings: " + file.native() + " cannot be read (" + why +
               "); the values last known or the defaults are used";
    }
    void makeStore() {
        const auto store = open();
        store->set("old", std::int64_t{1});
        store->set("other", std::string("x"));
    }
    /// Runs `body` as a user who owns the folder and must obey permissions (unlike root).
    template <class Body>
    void asUser(const Body& body) {
        if (::geteuid() == 0) {
            ASSERT_EQ(::chown(folder.path().c_str(), kNobody, kNobody), 0);
            for (const std::string& name : names()) {
                ASSERT_EQ(::chown((folder.path() / name).c_str(), kNobody, kNobody), 0);
            }
        }
        ChildProcess child([&] {
            if (::geteuid() == 0) {
                ASSERT_EQ(::setresgid(kNobody, kNobody, kNobody), 0);
                ASSERT_EQ(::setresuid(kNobody, kNobody, kNobody), 0);
            }
            body();
        });
        EXPECT_EQ(child.wait(), 0);
    }
    void allow(const std::filesystem::path& path, mode_t mode) {
        ASSERT_EQ(::chmod(path.c_str(), mode), 0);
    }
};

}  // namespace tarnwick::testing
