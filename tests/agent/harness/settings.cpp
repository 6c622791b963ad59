// SPDX-License-Identifier: Apache-2.0
#include "settings.h"

#include <cstdlib>
#include <sstream>

namespace harness {

namespace {

std::vector<std::string> split(const std::string &text, char separator) {
    std::vector<std::string> parts;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, separator);) {
        if (!part.empty()) {
            parts.push_back(part);
        }
    }
    return parts;
}

} // namespace

std::string environmentOr(const char *name, const std::string &otherwise) {
    const char *value = std::getenv(name);
    return value != nullptr && *value != '\0' ? value : otherwise;
}

std::string agentPath() {
    return environmentOr("QUARNSNMP_SNMPD", "/usr/sbin/snmpd");
}

std::vector<std::string> agentPrefix() {
    return split(environmentOr("QUARNSNMP_SNMPD_PREFIX", ""), ' ');
}

std::string trapReceiverPath() {
    return environmentOr("QUARNSNMP_SNMPTRAPD", "/usr/sbin/snmptrapd");
}

std::string modulePath() {
    return environmentOr("QUARNSNMP_MODULE", HARNESS_MODULE);
}

std::string coreLibraryPath() {
    return HARNESS_CORE_LIBRARY;
}

std::string burstModulePath() {
    return HARNESS_BURST_MODULE;
}

std::string watchModulePath() {
    return HARNESS_WATCH_MODULE;
}

std::string guardianPath() {
    return HARNESS_GUARDIAN;
}

std::string fakeTimeLibraryPath() {
    return environmentOr("QUARNSNMP_FAKETIME", HARNESS_FAKETIME);
}

std::vector<std::string> sanitizerRuntimes() {
    return split(HARNESS_SANITIZER_RUNTIMES, ':');
}

std::string goldenDirectory() {
    return HARNESS_GOLDEN_DIRECTORY;
}

std::string examplesDirectory() {
    return HARNESS_EXAMPLES_DIRECTORY;
}

std::string mibsDirectory() {
    return HARNESS_MIBS_DIRECTORY;
}

} // namespace harness
