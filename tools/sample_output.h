// SPDX-License-Identifier: MIT
// Where samples go: standard output, or a file that each of them replaces.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tarnwick::probe {

class SampleOutput {
 public:
    enum class Outcome {
        written,
        /// Nobody reads any more, which is no error.
        closed,
        failed,
    };

    /// Standard output where `file` is absent.
    explicit SampleOutput(std::optional<std::string> file = std::nullopt);

    /// A file is replaced as a whole: its readers find the old text or the new one, and after a
    /// failure the old one. Requires: SIGPIPE is ignored.
    Outcome put(std::string_view text);

    /// Waits until this moment, in seconds of the steady clock. False if the reader goes before.
    bool waitUntil(double moment) const;

    /// Why put() has failed, in one line.
    const std::string& trouble() const { return trouble_; }

 private:
    const std::optional<std::string> file_;
    std::string trouble_;
};

}  // namespace tarnwick::probe
