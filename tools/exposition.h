// SPDX-License-Identifier: MIT
// Text that monitoring servers read: the Prometheus text format 0.0.4 and OpenMetrics 1.0.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace tarnwick::probe {

/// Builds the text of one scrape, family by family. All names and help texts are ASCII and need no
/// escapes; label values are any bytes, of which those that are not UTF-8 are replaced. A family
/// without a sample leaves no trace.
class Exposition {
 public:
    enum class Format { prometheus, openMetrics };

    struct Label {
        std::string_view name;
        std::string_view value;
    };

    explicit Exposition(Format format) : format_(format) {}

    /// Begins a family of gauges. `unit` is the end of the name, such as "bytes", or empty.
    void gauge(std::string_view name, std::string_view unit, std::string_view help);
    /// Begins a family of constant labels. `name` comes without its end "_info".
    void info(std::string_view name, std::string_view help);
    /// Adds a sample to the family. A value that is not finite is unknown and left out. Requires:
    /// no two samples of a family have the same labels.
    void sample(double value, std::initializer_list<Label> labels = {});

    /// All that was added. Requires: nothing is added afterwards.
    std::string finish();

 private:
    const Format format_;
    std::string text_;
    /// Name of the samples of the current family, and its head, while it has no sample.
    std::string name_;
    std::string head_;
};

}  // namespace tarnwick::probe
