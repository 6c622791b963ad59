// SPDX-License-Identifier: Apache-2.0
#include "module_test.h"

#include <string_view>

#include "snmp_utils.h"

namespace {

struct FeatureRow {
    bool (*init)(void *);
    void (*deinit)();
    void (*poll)();
};

std::array<FeatureRow, gFeatureModules.size()> gOriginalRows{};

unsigned char typeOf(std::string_view syntax) {
    if (syntax.rfind("integer", 0) == 0) {
        return ASN_INTEGER;
    }
    return syntax == "gauge32()" ? ASN_UNSIGNED : ASN_OCTET_STR;
}

} // namespace

const std::map<std::string, ListedObject> &listedObjects() {
    static const std::map<std::string, ListedObject> objects = {
#define CAMERA_SCALAR(symbol, name, numbers, access, syntax)                                                           \
    {#name, {oids::registered::name, oids::name, std::string_view(#access) == "readOnly", typeOf(#syntax)}},
#define CAMERA_TABLE(symbol, name, numbers) {#name, {oids::registered::name, nullptr, true, ASN_NULL}},
#include "objects.def"
    };
    return objects;
}

const ListedObject &listedObject(const std::string &name) {
    return listedObjects().at(name);
}

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
