// SPDX-License-Identifier: Apache-2.0
// The MIB modules in other programs: they load silently without any other module, names and OIDs translate to each
// other, and a checker finds only the inevitable.
#include <algorithm>
#include <filesystem>
#include <map>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "mib_modules.h"
#include "object_oids.h"
#include "process.h"
#include "temporary_directory.h"

namespace {

using namespace mibs;
using testing::IsEmpty;
using testing::UnorderedElementsAreArray;

/** Returns all output of a command. */
std::string outputOf(const std::vector<std::string> &command, const std::map<std::string, std::string> &environment) {
    const support::CommandResult result = support::runCommand(command, environment);
    return result.errors + result.output;
}

/** Runs snmptranslate with modules of the project, without the configuration of the machine. */
std::string translated(const std::string &modules, const std::vector<std::string> &arguments) {
    // Without this directory, the program reports that it creates it.
    const support::TemporaryDirectory persistent;
    std::filesystem::create_directories(persistent.file("cert_indexes"));
    std::vector<std::string> command{"snmptranslate", "-M", directory(), "-m", modules};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return outputOf(command, {{"SNMPCONFPATH", persistent.path()}, {"SNMP_PERSISTENT_DIR", persistent.path()}});
}

/** Runs the checker at the level of all errors and warnings but those about style. @return them without file and line
 */
std::vector<std::string> findingsIn(const std::string &module) {
    const std::string path = directory() + "/" + module + ".txt";
    std::istringstream output(outputOf({"smilint", "-c", "/dev/null", "-m", "-l", "3", path},
                                       {{"SMIPATH", QUARNSNMP_MIB_STAND_INS ":" + directory()}}));
    std::vector<std::string> findings;
    for (std::string line; std::getline(output, line);) {
        findings.push_back(line.substr(line.find(": ") + 2));
    }
    return findings;
}

struct Translation {
    std::string modules;
    std::string oid;
    std::string name;
};

void PrintTo(const Translation &translation, std::ostream *stream) {
    *stream << translation.modules << " " << translation.name;
}

/** Removes the characters that a test's name must not have. */
std::string nameOfTest(const testing::TestParamInfo<std::string> &module) {
    std::string name = module.param;
    name.erase(std::remove(name.begin(), name.end(), '-'), name.end());
    return name;
}

class MibModule : public testing::TestWithParam<std::string> {};
class MibNames : public testing::TestWithParam<Translation> {};

// Each module loads those that it imports.
const Translation kTranslations[] = {
    {"QUARN-CAMERA-MIB", oids::modelName, "QUARN-CAMERA-MIB::modelName.0"},
    {"QUARN-CAMERA-MIB", oids::temperature, "QUARN-CAMERA-MIB::temperature.0"},
    {"QUARN-CAMERA-MIB", oids::row(oids::relayStatesState, 2), "QUARN-CAMERA-MIB::relayStatesState.2"},
    {"QUARN-NTCIP-1201-MIB", oids::moduleModel, "QUARN-NTCIP-1201-MIB::moduleModel.0"},
    {"QUARN-NTCIP-1205-MIB", oids::positionPan, "QUARN-NTCIP-1205-MIB::positionPan.0"},
    {"QUARN-NTCIP-1205-MIB", oids::alarmStatus, "QUARN-NTCIP-1205-MIB::alarmStatus.0"},
    {"QUARN-NTCIP-1205-MIB", oids::maxModules, "QUARN-NTCIP-1201-MIB::maxModules.0"},
    {"QUARN-NTCIP-1205-MIB", oids::rebootDevice, "QUARN-CAMERA-MIB::rebootDevice.0"},
    {"QUARN-CAMERA-TRAPS-MIB", oids::registered::temperature, "QUARN-CAMERA-TRAPS-MIB::temperatureChanged"},
    {"QUARN-CAMERA-TRAPS-MIB", oids::registered::power, "QUARN-CAMERA-TRAPS-MIB::powerChanged"},
    // The module that is loaded first determines the name where object and notification have the same OID.
    {"QUARN-CAMERA-MIB:QUARN-CAMERA-TRAPS-MIB", oids::voltage, "QUARN-CAMERA-MIB::voltage.0"},
    {"QUARN-CAMERA-TRAPS-MIB:QUARN-CAMERA-MIB", oids::registered::voltage, "QUARN-CAMERA-TRAPS-MIB::voltageChanged"},
    {"QUARN-CAMERA-TRAPS-MIB:QUARN-CAMERA-MIB", oids::modelNumber, "QUARN-CAMERA-MIB::modelNumber.0"},
    {"ALL", oids::temperature, "QUARN-CAMERA-MIB::temperature.0"},
};

} // namespace

TEST_P(MibModule, LoadsSilently) {
    const LoadedModules modules({GetParam()});
    EXPECT_THAT(modules.complaints(), IsEmpty());
    EXPECT_THAT(modules.oidsOf(GetParam()), testing::Not(IsEmpty()));
    EXPECT_EQ(translated(GetParam(), {"-On", ".1.3"}), ".1.3\n");
}

TEST_P(MibModule, PassesTheChecker) {
    const LoadedModules modules({GetParam()});
    std::vector<std::string> unavoidable;
    const auto note = [&](const std::string &name, const std::string &dotted) {
        // Cameras serve OIDs that end in 0.
        if (dotted.substr(dotted.rfind('.')) == ".0") {
            unavoidable.push_back("{last-subid-zero} last subidentifier assigned to `" + name + "' may not be zero");
        }
    };
    for (const Object &object : modules.objects()) {
        if (object.module == GetParam()) {
            note(object.name, object.oid);
        }
    }
    for (const Notification &notification : modules.notifications()) {
        note(notification.name, notification.oid);
        // Its value has the same OID, and so lies below the notification's parent.
        unavoidable.emplace_back("{parent-notification} notifications's parent node must be a simple node");
    }
    EXPECT_THAT(findingsIn(GetParam()), UnorderedElementsAreArray(unavoidable));
}

INSTANTIATE_TEST_SUITE_P(Shipped, MibModule, testing::ValuesIn(shippedModules()), nameOfTest);

TEST_P(MibNames, LeadToOidsAndBack) {
    EXPECT_EQ(translated(GetParam().modules, {GetParam().oid}), GetParam().name + "\n");
    EXPECT_EQ(translated(GetParam().modules, {"-On", GetParam().name}), GetParam().oid + "\n");
}

INSTANTIATE_TEST_SUITE_P(Shipped, MibNames, testing::ValuesIn(kTranslations));
