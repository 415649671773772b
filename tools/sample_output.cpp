// SPDX-License-Identifier: MIT
#include "tools/sample_output.h"

#include <cerrno>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <poll.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "platform/linux/files/folders.h"
#include "platform/linux/files/kept_file.h"
#include "platform/linux/files/last_error.h"

namespace tarnwick::probe {
namespace {

using platform::lastError;

constexpr mode_t kReadableByAll = 0666;

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
    const platform::FileDescriptor made(
        ::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kReadableByAll));
    if (!made.isOpen()) {
        return lastError();
    }
    if (const std::error_code error = writeAll(made.get(), text)) {
        return error;
    }
    return ::fsync(made.get()) == 0 ? std::error_code() : lastError();
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
    platform::makeLasting(target.parent_path());
    return {};
}

timespec until(double moment) {
    const double now =
        std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
    const double rest = moment > now ? moment - now : 0;
    const double whole = std::floor(rest);
    return {static_cast<std::time_t>(whole), static_cast<long>((rest - whole) * 1e9)};
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
    // A pipe without a reader is told of without being asked.
    pollfd reader{.fd = file_ ? -1 : STDOUT_FILENO, .events = 0, .revents = 0};
    while (true) {
        const timespec rest = until(moment);
        const int ready = ::ppoll(&reader, 1, &rest, nullptr);
        if (ready == 0 || (ready < 0 && errno != EINTR)) {
            return true;
        }
        if (ready > 0) {
            if ((reader.revents & (POLLERR | POLLHUP)) != 0) {
                return false;
            }
            reader.fd = -1;
        }
    }
}

}  // namespace tarnwick::probe
