// SPDX-License-Identifier: Apache-2.0
#include "module_test.h"

#include "snmp_utils.h"

namespace {

struct FeatureRow {
    bool (*init)(void *);
    void (*deinit)();
    void (*poll)();
};

std::array<FeatureRow, gFeatureModules.size()> gOriginalRows{};

} // namespace

ModuleTest::ModuleTest() {
    core().reset();
    for (std::size_t i = 0; i < gFeatureModules.size(); ++i) {
        gOriginalRows.at(i) = {gFeatureModules.at(i).init, gFeatureModules.at(i).deinit, gFeatureModules.at(i).poll};
        gFeatureModules.at(i).initialised = false;
    }
}

ModuleTest::~ModuleTest() {
    for (std::size_t i = 0; i < gFeatureModules.size(); ++i) {
        gFeatureModules.at(i).init = gOriginalRows.at(i).init;
        gFeatureModules.at(i).deinit = gOriginalRows.at(i).deinit;
        gFeatureModules.at(i).poll = gOriginalRows.at(i).poll;
    }
    UnregisterAll();
    EXPECT_THAT(core().problems(), IsEmpty());
}

void ModuleTest::openCore() {
    InitUtils();
    core().clearRecord();
}

void ModuleTest::emptyFeatureTable() {
    for (FeatureModule &feature : gFeatureModules) {
        feature.init = [](void *) { return false; };
        feature.deinit = [] { ADD_FAILURE() << "a feature that is not up was ended"; };
        feature.poll = nullptr;
    }
}

scripted::Core &ModuleTest::core() {
    return scripted::core();
}

void ModuleTest::SetUpTestSuite() {
    requests::startAgentLibrary();
}
