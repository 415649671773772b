// SPDX-License-Identifier: MIT
#include "platform/macos/readers/process_table_reader.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

#include "platform/macos/readers/process_records.h"

namespace tarnwick {
namespace {

class RecordedProcess final : public platform::ProcessEntry {
 public:
    RecordedProcess(platform::RawProcessTable& raw, const ProcessRecord& record)
        : raw_(raw), record_(record) {}

    std::int32_t identifier() const override { return record_.p_pid; }
    std::string_view command() override { return record_.p_comm; }
    std::optional<platform::TaskInformation> taskInformation() override {
        std::array<std::byte, kTaskInformationSize> bytes{};
        const std::int32_t size =
            raw_.procPidInfo(record_.p_pid, kTaskInformationFlavour, 0, bytes);
        if (size != std::int32_t{kTaskInformationSize}) {
            return std::nullopt;
        }
        return decodeTaskInformation(bytes);
    }

 private:
    platform::RawProcessTable& raw_;
    ProcessRecord record_;
};

}  // namespace

platform::ProcessListing ProcessTableReader::forEachProcess(const Visit& visit) {
    const std::optional<std::size_t> size = raw_.sysctl(kProcessTableName, std::nullopt);
    if (!size) {
        return platform::ProcessListing::noBufferSize;
    }
    std::vector<std::byte> records(*size / kProcessRecordSize * kProcessRecordSize);
    const std::optional<std::size_t> written =
        raw_.sysctl(kProcessTableName, std::span<std::byte>(records));
    if (!written) {
        return platform::ProcessListing::noList;
    }
    std::span<const std::byte> rest(records.data(), std::min(*written, records.size()));
    while (const std::optional<ProcessRecord> record = decodeProcessRecord(rest)) {
        RecordedProcess process(raw_, *record);
        visit(process);
        rest = rest.subspan(kProcessRecordSize);
    }
    return platform::ProcessListing::complete;
}

std::optional<std::string> ProcessTableReader::executablePath(std::int32_t identifier) {
    std::array<std::byte, kExecutablePathSize> bytes{};
    if (raw_.procPidPath(identifier, bytes) < 1) {
        return std::nullopt;
    }
    const std::string_view path(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    return std::string(path.substr(0, path.find('\0')));
}

}  // namespace tarnwick
