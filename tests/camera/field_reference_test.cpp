// SPDX-License-Identifier: Apache-2.0
// The reference of fields in the documentation, whose tables are generated from the field records.
#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>

#include <gmock/gmock.h>

#include "service.h"
#include "text_file.h"

using namespace camera;

namespace {

/** Handwritten parts of the document. */
struct Document {
    std::string preamble;
    std::map<std::string, std::string> introductions;                    ///< text under the heading of a service
    std::map<std::pair<std::string, std::string>, std::string> meanings; ///< by service and key
};

std::string trimmed(const std::string &text) {
    const std::size_t start = text.find_first_not_of(' ');
    return start == std::string::npos ? "" : text.substr(start, text.find_last_not_of(' ') - start + 1);
}

std::vector<std::string> cellsOf(const std::string &line) {
    std::vector<std::string> cells;
    std::istringstream text(line.substr(1));
    for (std::string cell; std::getline(text, cell, '|');) {
        cells.push_back(trimmed(cell));
    }
    return cells;
}

Document parseDocument(const std::string &text) {
    Document document;
    std::string service;
    bool inTable = false;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind("## `", 0) == 0) {
            service = line.substr(4, line.rfind('`') - 4);
            inTable = false;
        } else if (service.empty()) {
            document.preamble += line + "\n";
        } else if (line.rfind("| `", 0) == 0) {
            const std::vector<std::string> cells = cellsOf(line);
            document.meanings[{service, cells.front()}] = cells.back();
        } else if (line.rfind('|', 0) == 0) {
            inTable = true;
        } else if (!inTable && (!line.empty() || document.introductions.count(service) > 0)) {
            document.introductions[service] += line + "\n";
        }
    }
    return document;
}

/** Returns the fields of a service, with one field AXIS.x in place of the equal fields pan.x, tilt.x and zoom.x. */
std::vector<FieldSummary> documentedFields(const std::string &service) {
    std::vector<FieldSummary> documented;
    const std::vector<FieldSummary> fields = makeService(service)->fields();
    for (FieldSummary field : fields) {
        const std::string part = field.key.substr(0, field.key.find('.'));
        const bool isAxis = part == "pan" || part == "tilt" || part == "zoom";
        if (isAxis) {
            const std::string rest = field.key.substr(part.size());
            const auto pan = std::find_if(fields.begin(), fields.end(),
                                          [&](const FieldSummary &each) { return each.key == "pan" + rest; });
            EXPECT_EQ(pan->expected, field.expected) << field.key;
            EXPECT_EQ(pan->initial, field.initial) << field.key;
            field.key = "AXIS" + rest;
        }
        if (!isAxis || part == "pan") {
            documented.push_back(field);
        }
    }
    return documented;
}

/** Returns the document with tables for the present field records. */
std::string generate(const Document &document) {
    std::string text = document.preamble;
    for (const std::string &service : knownServices()) {
        const auto introduction = document.introductions.find(service);
        text += text.size() > document.preamble.size() ? "\n" : "";
        text += "## `" + service + "`\n\n";
        text += introduction == document.introductions.end() ? "" : introduction->second;
        text += "| Key | Value | Default | Meaning |\n|---|---|---|---|\n";
        for (const FieldSummary &field : documentedFields(service)) {
            const std::string key = "`" + field.key + "`";
            const auto meaning = document.meanings.find({service, key});
            const bool isNew = meaning == document.meanings.end() || meaning->second.empty();
            EXPECT_FALSE(isNew) << QUARNSNMP_FIELD_REFERENCE << ": write the meaning of " << service << " " << key;
            text += "| " + key + " | " + field.expected + " | `" + field.initial.dump() + "` | " +
                    (isNew ? "" : meaning->second) + " |\n";
        }
    }
    return text;
}

TEST(FieldReference, HasTheTypesAndDefaultsOfTheRecords) {
    const std::string present = readTextFile(QUARNSNMP_FIELD_REFERENCE);
    const std::string generated = generate(parseDocument(present));
    const char *update = std::getenv("QUARNSNMP_UPDATE_DOCUMENTS");
    if (update != nullptr && std::string(update) == "1") {
        std::ofstream(QUARNSNMP_FIELD_REFERENCE) << generated;
        return;
    }
    EXPECT_EQ(generated, present) << "QUARNSNMP_UPDATE_DOCUMENTS=1 rewrites the tables";
}

} // namespace
