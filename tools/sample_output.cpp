// SPDX-License-Identifier: MIT
#include "tools/sample_output.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <fcntl.h>
#include <filesystem>
#include <poll.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "tools/probe_system.h"

namespace tarnwick::probe {
namespace {

constexpr mode_t kReadableByAll = 0666;

/// Requires: the call before has failed.
std::error_code lastError() {
    return {errno, std::generic_category()};
}

std::error_code writeAll(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = ::write(descriptor, text.data(), text.size());
        if (written >= 0) {
            text.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno == EAGAIN) {
            pollfd ready{.fd = descriptor, .events = POLLOUT, .revents = 0};
            ::poll(&ready, 1, -1);
        } else if (errno != EINTR) {
            return lastError();
        }
    }
    return {};
}

/// Makes a file that is on the disk when it returns.
std::error_code makeFile(const std::string& name, std::string_view text) {
    // Left by a process of this number that was ended on the way.
    ::unlink(name.c_str());
    const int made = ::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kReadableByAll);
    if (made < 0) {
        return lastError();
    }
    std::error_code error = writeAll(made, text);
    if (!error && ::fsync(made) != 0) {
        error = lastError();
    }
    ::close(made);
    return error;
}

/// Puts `text` in the place of `file`, which may be a link to a file or missing.
std::error_code replaceFile(const std::filesystem::path& file, std::string_view text) {
    std::error_code error;
    const auto type = std::filesystem::status(file, error).type();
    // To rename something over a device would take the device away.
    if (type != std::filesystem::file_type::regular &&
        type != std::filesystem::file_type::not_found) {
        return error ? error : std::make_error_code(std::errc::invalid_argument);
    }
    const std::filesystem::path target = std::filesystem::weakly_canonical(file, error);
    if (error) {
        return error;
    }
    const std::string beside = target.parent_path() / ("." + target.filename().native() + "." +
                                                       std::to_string(::getpid()) + ".new");
    error = makeFile(beside, text);
    if (!error && ::rename(beside.c_str(), target.c_str()) != 0) {
        error = lastError();
    }
    if (error) {
        ::unlink(beside.c_str());
        return error;
    }
    makeLasting(target.parent_path());
    return {};
}

/// 0 when the moment has come; never less than what is left.
int millisecondsUntil(double moment) {
    const double now =
        std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
    return static_cast<int>(std::ceil(std::max(0.0, moment - now) * 1000));
}

}  // namespace

SampleOutput::SampleOutput(std::optional<std::string> file) : file_(std::move(file)) {}

SampleOutput::Outcome SampleOutput::put(std::string_view text) {
    if (file_) {
        const std::error_code error = replaceFile(*file_, text);
        trouble_ = error ? *file_ + " cannot be written: " + error.message() : "";
        return error ? Outcome::failed : Outcome::written;
    }
    const std::error_code error = writeAll(STDOUT_FILENO, text);
    if (error == std::errc::broken_pipe) {
        return Outcome::closed;
    }
    trouble_ = error ? "the output cannot be written" : "";
    return error ? Outcome::failed : Outcome::written;
}

bool SampleOutput::waitUntil(double moment) const {
    // Linux tells of a pipe without a reader unasked, macOS only when asked for a hang-up.
    pollfd reader{.fd = file_ ? -1 : STDOUT_FILENO, .events = POLLHUP, .revents = 0};
    int rest = 0;
    do {
        rest = millisecondsUntil(moment);
        const int ready = ::poll(&reader, 1, rest);
        if (ready > 0 && (reader.revents & (POLLERR | POLLHUP)) != 0) {
            return false;
        }
        if (ready < 0 && errno != EINTR) {
            return true;
        }
        // Whatever else it tells of would be told again at once.
        if (ready >= 0) {
            reader.fd = -1;
        }
    } while (rest > 0);
    return true;
}

}  // namespace tarnwick::probe
