// SPDX-License-Identifier: Apache-2.0
// The guide to missing objects in docs/install.md, on a camera that lacks most services and on one that is complete.
#include <algorithm>
#include <fstream>
#include <map>
#include <regex>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "camera_agent.h"
#include "object_oids.h"

namespace {

using namespace harness;

/** A row of the guide. */
struct Row {
    std::string service;
    std::vector<std::string> objects; ///< names of those that do not exist without the service
    std::string line;                 ///< of the log
};

/** Returns all texts in backticks. */
std::vector<std::string> inBackticks(const std::string &text) {
    static const std::regex expression("`([^`]*)`");
    std::vector<std::string> result;
    for (std::sregex_iterator match(text.begin(), text.end(), expression), end; match != end; ++match) {
        result.push_back((*match)[1]);
    }
    return result;
}

/** Reads the rows of the services, and the errors of a complete camera. */
std::vector<Row> readGuide(std::vector<std::string> &normalErrors) {
    std::ifstream document(INSTALL_DOCUMENT);
    std::vector<Row> rows;
    for (std::string line; std::getline(document, line);) {
        std::vector<std::string> cells;
        std::istringstream text(line);
        for (std::string cell; std::getline(text, cell, '|');) {
            cells.push_back(cell);
        }
        if (cells.size() == 5 && cells[3].find("`no zorva API ") != std::string::npos) {
            const std::string missing = cells[2].substr(0, cells[2].find(';'));
            const bool none = missing.rfind(" none", 0) == 0 || missing.rfind(" as ", 0) == 0;
            rows.push_back({inBackticks(cells[1]).at(0), none ? std::vector<std::string>() : inBackticks(missing),
                            inBackticks(cells[3]).at(0)});
        } else if (line.rfind("SNMP error ", 0) == 0) {
            normalErrors.push_back(line);
        }
    }
    return rows;
}

/** Returns the OID of an object or a table by its name. */
std::string oidOf(const std::string &name) {
    static const std::map<std::string, std::string> oids = {
#define CAMERA_SCALAR(symbol, name, numbers, access, syntax) {#name, oids::registered::name},
#define CAMERA_TABLE(symbol, name, numbers) {#name, oids::registered::name},
#include "objects.def"
    };
    const auto found = oids.find(name);
    EXPECT_NE(found, oids.end()) << name;
    return found == oids.end() ? "" : found->second;
}

class MissingObjectsOfMinimal : public CameraAgent {
protected:
    MissingObjectsOfMinimal() : CameraAgent("minimal") {}
};

class MissingObjectsOfDome : public CameraAgent {
protected:
    MissingObjectsOfDome() : CameraAgent("dome") {}
};

} // namespace

TEST_F(MissingObjectsOfMinimal, AreThoseOfTheGuide) {
    std::vector<std::string> unused;
    const std::vector<Row> rows = readGuide(unused);
    EXPECT_EQ(rows.size(), 13U);
    const std::vector<std::string> oids = oidsOf(walk());
    for (const Row &row : rows) {
        const bool present = row.service == "device_information" || row.service == "device_management";
        // The discovery of an exposure succeeds, and nothing needs one.
        EXPECT_EQ(logged(row.line) != 0, !present && row.service != "exposure") << row.service;
        for (const std::string &object : row.objects) {
            const std::string oid = oidOf(object) + ".";
            const bool served = std::any_of(oids.begin(), oids.end(),
                                            [&](const std::string &other) { return other.rfind(oid, 0) == 0; });
            EXPECT_EQ(served, present) << object;
        }
    }
}

TEST_F(MissingObjectsOfDome, CauseTheErrorsOfTheGuide) {
    std::vector<std::string> normal;
    readGuide(normal);
    std::vector<std::string> errors;
    for (const std::string &line : agent_.moduleLog().lines()) {
        const std::size_t start = line.find("SNMP error ");
        if (start != std::string::npos) {
            errors.push_back(line.substr(start));
        }
    }
    EXPECT_FALSE(normal.empty());
    EXPECT_EQ(errors, normal);
}
