// SPDX-License-Identifier: Apache-2.0
// For clients in other languages: the test vectors with a real agent, and the examples.
#include <fstream>

#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "camera_agent.h"
#include "object_oids.h"
#include "octets_text.h"
#include "ptzctl_client.h"

namespace {

using namespace harness;
using namespace ptzctl_client;
using nlohmann::json;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char *kPython = "/usr/bin/python3";

class PositionVectors : public CameraAgent {
protected:
    PositionVectors() : CameraAgent("dome") {
        std::ifstream file(VECTORS_DIRECTORY "/position-commands.json");
        vectors_ = json::parse(file);
        for (const json &axis : vectors_.at("axes")) {
            oids_[axis.at("axis")] = "." + axis.at("oid").get<std::string>();
        }
    }

    /** Makes the varbind of a row. */
    Varbind valueOf(const json &row) const {
        const std::string &oid = oids_.at(row.at("axis"));
        return row.contains("integer") ? integer(oid, row.at("integer"))
                                       : octetString(oid, snmp::parseHex(row.at("octets")));
    }

    /** Tests whether a row has the order of octets that this product's cameras have. */
    static bool isForThisProduct(const json &row) {
        return row.value("byteOrder", "low") == "low";
    }

    json vectors_;
    std::map<std::string, std::string> oids_;
};

class Examples : public CameraClient {
protected:
    /** Runs an example that pans the camera. */
    CommandResult panTo(std::vector<std::string> program, const std::string &degrees,
                        const std::map<std::string, std::string> &environment = {},
                        const std::string &community = "private") const {
        program.insert(program.end(), {"127.0.0.1", std::to_string(agent_.port()), community, degrees});
        return runCommand(program, environment, patient(std::chrono::seconds(60)));
    }

    /** Expects that an example moves the camera, and reports a refusal. */
    void expectToMove(const std::vector<std::string> &program,
                      const std::map<std::string, std::string> &environment = {}) {
        const CommandResult moved = panTo(program, "90", environment);
        EXPECT_EQ(moved.output, "mode 2, speed 64, to 90.00 degrees\n") << moved.errors;
        EXPECT_TRUE(moved.status.clean()) << moved.errors;
        EXPECT_TRUE(arrives("pan", 90000));
        EXPECT_TRUE(panTo(program, "-90", environment).status.clean());
        EXPECT_TRUE(arrives("pan", 270000));
        const CommandResult refused = panTo(program, "0", environment, "public");
        EXPECT_EQ(refused.status.code, 1);
        EXPECT_THAT(refused.errors, HasSubstr("127.0.0.1: "));
        EXPECT_EQ(refused.output, "");
    }
};

} // namespace

TEST_F(PositionVectors, AreAcceptedByTheCamera) {
    int count = 0;
    for (const json &row : vectors_.at("commands")) {
        if (!isForThisProduct(row)) {
            continue;
        }
        ++count;
        const Varbind value = valueOf(row);
        EXPECT_TRUE(manager_.set({value}).ok()) << row;
        EXPECT_EQ(manager_.get(value.oid).varbinds, std::vector<Varbind>{value}) << row;
    }
    EXPECT_GT(count, 50);
}

TEST_F(PositionVectors, AreRefusedByTheCamera) {
    const std::map<std::string, ErrorStatus> errors = {{"wrongType", ErrorStatus::WrongType},
                                                       {"wrongValue", ErrorStatus::WrongValue}};
    const CameraEvents events(camera_);
    int count = 0;
    for (const json &row : vectors_.at("refused")) {
        if (isForThisProduct(row)) {
            ++count;
            EXPECT_EQ(manager_.set({valueOf(row)}).error, errors.at(row.at("error"))) << row;
        }
    }
    EXPECT_GT(count, 15);
    EXPECT_THAT(finishedOperations(events), IsEmpty());
}

TEST_F(Examples, PythonMovesTheCamera) {
    if (!runCommand({kPython, "-c", "import pysnmp"}).status.clean()) {
        GTEST_SKIP() << "pysnmp is missing; the Debian package is python3-pysnmp4";
    }
    expectToMove({kPython, EXAMPLES_DIRECTORY "/python/move_camera.py"});
}

TEST_F(Examples, NodeMovesTheCamera) {
    if (!runCommand({"/bin/sh", "-c", "command -v node"}).status.clean()) {
        GTEST_SKIP() << "node is missing";
    }
    if (access(NODE_MODULES "/net-snmp", R_OK) != 0) {
        GTEST_SKIP() << "net-snmp is missing in " NODE_MODULES
                        "; `npm install` with examples/node/package.json adds it";
    }
    expectToMove({"node", EXAMPLES_DIRECTORY "/node/move-camera.js"}, {{"NODE_PATH", NODE_MODULES}});
}
