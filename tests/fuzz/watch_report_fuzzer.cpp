// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Fuzzer of the datagrams at the panel's watch.sock, up to the entry of the log.
 */
#include <cstdint>
#include <string_view>

#include "event_log.h"
#include "finding.h"
#include "log_entries.h"
#include "watch_report.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const auto report = panel::parseWatchReport({reinterpret_cast<const char *>(data), size});
    if (!report) {
        return 0;
    }
    panel::EventLog log;
    const panel::EventLog::Entry &entry = log.add(panel::requestEntry(*report));
    if (entry.json->find('\n') != std::string::npos || !nlohmann::json::accept(*entry.json)) {
        fuzz::reportFinding("an entry that is not one line of JSON: " + *entry.json);
    }
    return 0;
}
