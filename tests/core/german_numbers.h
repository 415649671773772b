// SPDX-License-Identifier: MIT
// Numbers as a German session writes them.
#pragma once

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

namespace tarnwick {

/// As long as it lives, a comma is the decimal point and a point parts thousands. The language
/// itself need not be installed.
class GermanNumbers {
 public:
    GermanNumbers() {
        if (std::setlocale(LC_NUMERIC, "de_DE.UTF-8") != nullptr) {
            return;
        }
        EXPECT_NE(mkdtemp(folder_.data()), nullptr);
        std::ofstream(folder_ + "/source")
            << "LC_NUMERIC\ndecimal_point \",\"\nthousands_sep \".\"\n"
               "grouping 3\nEND LC_NUMERIC\n";
        // Complains about all that the source does not tell, and still writes what it tells. The
        // package locales has the character map that it reads.
        const std::string command = "localedef --no-archive -c -i " + folder_ + "/source " +
                                    folder_ + "/comma >/dev/null 2>&1";
        EXPECT_NE(std::system(command.c_str()), -1);
        setenv("LOCPATH", folder_.c_str(), 1);
        EXPECT_NE(std::setlocale(LC_NUMERIC, "comma"), nullptr);
    }
    GermanNumbers(const GermanNumbers&) = delete;
    GermanNumbers& operator=(const GermanNumbers&) = delete;
    ~GermanNumbers() {
        std::setlocale(LC_NUMERIC, before_.c_str());
        unsetenv("LOCPATH");
        std::filesystem::remove_all(folder_);
    }

 private:
    const std::string before_ = std::setlocale(LC_NUMERIC, nullptr);
    std::string folder_ = ::testing::TempDir() + "tarnwick-locale-XXXXXX";
};

}  // namespace tarnwick
