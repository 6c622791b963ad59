// SPDX-License-Identifier: Apache-2.0
// The MIB modules in programs of others: they load without a word on a machine that has no other module, names and
// identifiers lead to each other, and a checker finds only what cannot be otherwise.
#include <algorithm>
#include <filesystem>
#include <map>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "mib_modules.h"
#include "process.h"
#include "temporary_directory.h"

namespace {

using namespace mibs;
using testing::IsEmpty;
using testing::UnorderedElementsAreArray;

/** Output of a command, all of it. */
std::string outputOf(const std::vector<std::string> &command, const std::map<std::string, std::string> &environment) {
    const support::CommandResult result = support::runCommand(command, environment);
    return result.errors + result.output;
}

/** Runs snmptranslate with modules of the project, without the configuration of the machine. */
std::string translated(const std::string &modules, const std::vector<std::string> &arguments) {
    // The program says so when it makes this directory.
    const support::TemporaryDirectory persistent;
    std::filesystem::create_directories(persistent.file("cert_indexes"));
    std::vector<std::string> command{"snmptranslate", "-M", directory(), "-m", modules};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return outputOf(command, {{"SNMPCONFPATH", persistent.path()}, {"SNMP_PERSISTENT_DIR", persistent.path()}});
}

/** What the checker says at a level that has all errors and warnings but those about style, without file and line. */
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
    const char *modules;
    const char *identifier;
    const char *name;
};

void PrintTo(const Translation &translation, std::ostream *stream) {
    *stream << translation.modules << " " << translation.name;
}

/** A module's name without what the name of a test must not have. */
std::string nameOfTest(const testing::TestParamInfo<std::string> &module) {
    std::string name = module.param;
    name.erase(std::remove(name.begin(), name.end(), '-'), name.end());
    return name;
}

class MibModule : public testing::TestWithParam<std::string> {};
class MibNames : public testing::TestWithParam<Translation> {};

// Every module brings those that it imports.
constexpr Translation kTranslations[] = {
    {"QUARN-CAMERA-MIB", ".1.3.6.1.4.1.99999.1.1.2.0.0", "QUARN-CAMERA-MIB::modelName.0"},
    {"QUARN-CAMERA-MIB", ".1.3.6.1.4.1.99999.1.1.7.0.0", "QUARN-CAMERA-MIB::temperature.0"},
    {"QUARN-CAMERA-MIB", ".1.3.6.1.4.1.99999.1.3.2.1.3.2", "QUARN-CAMERA-MIB::relayStatesState.2"},
    {"QUARN-NTCIP-1201-MIB", ".1.3.6.1.4.1.1206.4.2.6.1.3.1.4.0", "QUARN-NTCIP-1201-MIB::moduleModel.0"},
    {"QUARN-NTCIP-1205-MIB", ".1.3.6.1.4.1.1206.4.2.7.4.1.0", "QUARN-NTCIP-1205-MIB::positionPan.0"},
    {"QUARN-NTCIP-1205-MIB", ".1.3.6.1.4.1.1206.4.2.7.6.1.0.0", "QUARN-NTCIP-1205-MIB::alarmStatus.0"},
    {"QUARN-NTCIP-1205-MIB", ".1.3.6.1.4.1.1206.4.2.6.1.2.0", "QUARN-NTCIP-1201-MIB::maxModules.0"},
    {"QUARN-NTCIP-1205-MIB", ".1.3.6.1.4.1.99999.1.1.100.0.0", "QUARN-CAMERA-MIB::rebootDevice.0"},
    {"QUARN-CAMERA-TRAPS-MIB", ".1.3.6.1.4.1.99999.1.1.7.0", "QUARN-CAMERA-TRAPS-MIB::temperatureChanged"},
    {"QUARN-CAMERA-TRAPS-MIB", ".1.3.6.1.4.1.99999.1.1.8.0", "QUARN-CAMERA-TRAPS-MIB::powerChanged"},
    // The module that is loaded first gives the name where object and notification have the same identifier.
    {"QUARN-CAMERA-MIB:QUARN-CAMERA-TRAPS-MIB", ".1.3.6.1.4.1.99999.1.1.9.0.0", "QUARN-CAMERA-MIB::voltage.0"},
    {"QUARN-CAMERA-TRAPS-MIB:QUARN-CAMERA-MIB", ".1.3.6.1.4.1.99999.1.1.9.0", "QUARN-CAMERA-TRAPS-MIB::voltageChanged"},
    {"QUARN-CAMERA-TRAPS-MIB:QUARN-CAMERA-MIB", ".1.3.6.1.4.1.99999.1.1.1.0.0", "QUARN-CAMERA-MIB::modelNumber.0"},
    {"ALL", ".1.3.6.1.4.1.99999.1.1.7.0.0", "QUARN-CAMERA-MIB::temperature.0"},
};

} // namespace

TEST_P(MibModule, LoadsWithoutAWord) {
    const LoadedModules modules({GetParam()});
    EXPECT_THAT(modules.complaints(), IsEmpty());
    EXPECT_THAT(modules.identifiersOf(GetParam()), testing::Not(IsEmpty()));
    EXPECT_EQ(translated(GetParam(), {"-On", ".1.3"}), ".1.3\n");
}

TEST_P(MibModule, PassesTheChecker) {
    const LoadedModules modules({GetParam()});
    std::vector<std::string> unavoidable;
    const auto note = [&](const std::string &name, const std::string &identifier) {
        // Identifiers that end in 0 are what the camera serves.
        if (identifier.substr(identifier.rfind('.')) == ".0") {
            unavoidable.push_back("{last-subid-zero} last subidentifier assigned to `" + name + "' may not be zero");
        }
    };
    for (const Object &object : modules.objects()) {
        if (object.module == GetParam()) {
            note(object.name, object.identifier);
        }
    }
    for (const Notification &notification : modules.notifications()) {
        note(notification.name, notification.identifier);
        // Its value has the same identifier, and so lies below the notification's parent.
        unavoidable.emplace_back("{parent-notification} notifications's parent node must be a simple node");
    }
    EXPECT_THAT(findingsIn(GetParam()), UnorderedElementsAreArray(unavoidable));
}

INSTANTIATE_TEST_SUITE_P(Shipped, MibModule, testing::ValuesIn(shippedModules()), nameOfTest);

TEST_P(MibNames, LeadToIdentifiersAndBack) {
    EXPECT_EQ(translated(GetParam().modules, {GetParam().identifier}), GetParam().name + std::string("\n"));
    EXPECT_EQ(translated(GetParam().modules, {"-On", GetParam().name}), GetParam().identifier + std::string("\n"));
}

INSTANTIATE_TEST_SUITE_P(Shipped, MibNames, testing::ValuesIn(kTranslations));
