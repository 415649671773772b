// SPDX-License-Identifier: MIT
#include "tools/exposition.h"

#include <cmath>
#include <utility>

#include "platform/utf8.h"
#include "tools/probe_system.h"

namespace tarnwick::probe {
namespace {

void appendEscaped(std::string& text, std::string_view value) {
    for (const char character : platform::repairedUTF8(value)) {
        switch (character) {
            case '\\':
                text += "\\\\";
                break;
            case '"':
                text += "\\\"";
                break;
            case '\n':
                text += "\\n";
                break;
            default:
                text += character;
        }
    }
}

std::string comment(std::string_view keyword, std::string_view name, std::string_view text) {
    std::string line = "# ";
    for (const std::string_view word : {keyword, name, text}) {
        line.append(word) += ' ';
    }
    line.back() = '\n';
    return line;
}

}  // namespace

void Exposition::gauge(std::string_view name, std::string_view unit, std::string_view help) {
    name_ = name;
    head_ = comment("HELP", name, help) + comment("TYPE", name, "gauge");
    if (format_ == Format::openMetrics && !unit.empty()) {
        head_ += comment("UNIT", name, unit);
    }
}

void Exposition::info(std::string_view name, std::string_view help) {
    name_ = std::string(name) + "_info";
    const bool isOpen = format_ == Format::openMetrics;
    const std::string_view family = isOpen ? name : std::string_view(name_);
    head_ = comment("HELP", family, help) + comment("TYPE", family, isOpen ? "info" : "gauge");
}

void Exposition::sample(double value, std::initializer_list<Label> labels) {
    if (!std::isfinite(value)) {
        return;
    }
    text_ += head_;
    head_.clear();
    text_ += name_;
    char separator = '{';
    for (const Label& label : labels) {
        text_ += separator;
        text_.append(label.name) += "=\"";
        appendEscaped(text_, label.value);
        text_ += '"';
        separator = ',';
    }
    text_ += labels.size() > 0 ? "} " : " ";
    text_ += numberText(value);
    text_ += '\n';
}

std::string Exposition::finish() {
    if (format_ == Format::openMetrics) {
        text_ += "# EOF\n";
    }
    return std::move(text_);
}

}  // namespace tarnwick::probe
