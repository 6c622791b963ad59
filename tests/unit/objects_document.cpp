// SPDX-License-Identifier: Apache-2.0
#include "objects_document.h"

#include <fstream>
#include <functional>

#include <gtest/gtest.h>

namespace objects_document {

namespace {

std::vector<std::string> split(const std::string &text, const std::string &separator) {
    std::vector<std::string> parts;
    std::size_t start = 0;
    for (std::size_t end = text.find(separator); end != std::string::npos; end = text.find(separator, start)) {
        parts.push_back(text.substr(start, end - start));
        start = end + separator.size();
    }
    parts.push_back(text.substr(start));
    return parts;
}

/** The cells of each line that starts with `start`, in the sections whose heading satisfies a predicate. */
std::vector<std::vector<std::string>> tableLines(const std::function<bool(const std::string &heading)> &wanted,
                                                 const std::string &start) {
    std::ifstream document(QUARNSNMP_OBJECTS_DOCUMENT);
    EXPECT_TRUE(document.is_open());
    std::vector<std::vector<std::string>> lines;
    bool inSection = false;
    for (std::string line; std::getline(document, line);) {
        if (line.rfind("## ", 0) == 0) {
            inSection = wanted(line);
        } else if (inSection && line.rfind(start, 0) == 0) {
            lines.push_back(split(line.substr(2, line.size() - 4), " | "));
        }
    }
    return lines;
}

} // namespace

bool operator==(const ObjectRow &left, const ObjectRow &right) {
    return left.name == right.name && left.oid == right.oid && left.access == right.access &&
           left.syntax == right.syntax && left.getCalls == right.getCalls && left.setCalls == right.setCalls;
}

void PrintTo(const ObjectRow &row, std::ostream *stream) {
    *stream << "| `" << row.name << "` | " << row.oid << " | " << row.access << " | " << row.syntax << " | "
            << row.getCalls << " | " << row.setCalls << " |";
}

std::vector<ObjectRow> objects(const std::string &word, bool wanted) {
    const auto hasWord = [&](const std::string &heading) {
        return (heading.find(word) != std::string::npos) == wanted;
    };
    std::vector<ObjectRow> rows;
    for (const std::vector<std::string> &cells : tableLines(hasWord, "| `")) {
        EXPECT_EQ(cells.size(), 7U) << cells.front();
        EXPECT_NE(cells.back(), "") << cells.front();
        rows.push_back({cells.at(0).substr(1, cells.at(0).size() - 2), cells.at(1), cells.at(2), cells.at(3),
                        cells.at(4), cells.at(5)});
    }
    return rows;
}

std::vector<TrapRow> traps() {
    std::vector<TrapRow> rows;
    for (const std::vector<std::string> &cells :
         tableLines([](const std::string &heading) { return heading == "## Traps"; }, "| ")) {
        // All but the head of the table.
        if (cells.at(1).rfind("1.", 0) == 0) {
            rows.push_back({cells.at(0), cells.at(1)});
        }
    }
    return rows;
}

} // namespace objects_document
