// SPDX-License-Identifier: Apache-2.0
// The reference of camera files in the users' documentation against the field records.
#include <fstream>

#include <gmock/gmock.h>

#include "service.h"

using namespace camera;

namespace {

std::string trimmed(const std::string &text) {
    const std::size_t start = text.find_first_not_of(' ');
    return start == std::string::npos ? "" : text.substr(start, text.find_last_not_of(' ') - start + 1);
}

std::vector<std::string> cells(const std::string &line) {
    std::vector<std::string> result;
    std::size_t start = 1;
    for (std::size_t end = line.find('|', start); end != std::string::npos; end = line.find('|', start)) {
        result.push_back(trimmed(line.substr(start, end - start)));
        start = end + 1;
    }
    return result;
}

/** The keys that a row describes: AXIS stands for each of the axes. */
std::vector<std::string> keysOf(const std::string &key) {
    const std::string placeholder = "AXIS";
    const std::size_t place = key.find(placeholder);
    if (place == std::string::npos) {
        return {key};
    }
    std::vector<std::string> keys;
    for (const char *axis : {"pan", "tilt", "zoom"}) {
        keys.push_back(std::string(key).replace(place, placeholder.size(), axis));
    }
    return keys;
}

std::string rowOf(const std::string &service, const std::string &key, const std::string &expected,
                  const std::string &initial) {
    return service + " | " + key + " | " + expected + " | " + initial;
}

/** The rows `service | field | expected | default` of the document, from the table under each service's heading. */
std::vector<std::string> documentedFields() {
    std::ifstream document(QUARNSNMP_CAMERA_DOCUMENT);
    EXPECT_TRUE(document.is_open());
    std::vector<std::string> rows;
    std::string service;
    for (std::string line; std::getline(document, line);) {
        if (line.empty()) {
            continue;
        }
        if (line.rfind("### `", 0) == 0) {
            service = line.substr(5, line.rfind('`') - 5);
        } else if (line.front() == '#') {
            service.clear();
        } else if (!service.empty() && line.rfind("| `", 0) == 0) {
            const std::vector<std::string> row = cells(line);
            EXPECT_EQ(4U, row.size()) << line;
            EXPECT_NE("", row.at(3)) << line;
            for (const std::string &key : keysOf(row.at(0))) {
                rows.push_back(rowOf(service, key, row.at(1), row.at(2)));
            }
        }
    }
    return rows;
}

TEST(Documentation, DescribesEachFieldAsItIs) {
    std::vector<std::string> rows;
    for (const std::string &service : knownServices()) {
        for (const FieldSummary &field : makeService(service)->fields()) {
            rows.push_back(rowOf(service, "`" + field.key + "`", field.expected, "`" + field.initial.dump() + "`"));
        }
    }
    EXPECT_THAT(documentedFields(), testing::UnorderedElementsAreArray(rows));
}

} // namespace
