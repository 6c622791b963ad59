// SPDX-License-Identifier: Apache-2.0
#include "check/report_files.h"

#include <fstream>

#include "failure.h"

namespace ptzctl::check {

std::string textAt(const nlohmann::ordered_json &object, const char *key) {
    return object.value(key, std::string());
}

void writeFile(const std::string &path, const std::string &text) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << text << std::flush;
    if (!file) {
        throw snmp::Failure(snmp::Cause::BadResponse, "cannot write " + path);
    }
}

} // namespace ptzctl::check
