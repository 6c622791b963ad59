// SPDX-License-Identifier: Apache-2.0
#include "fuzzed_module.h"

#include <algorithm>
#include <iterator>

#include "core_utils.h"
#include "every_call.h"
#include "feature_modules.h"
#include "finding.h"
#include "oids.h"
#include "trap_sender.h"

namespace fuzz {

namespace {

// Registered by the features of the stepper lenses as well as by others.
oid *const kContestedObjects[] = {
    oid_rangeFocusLimit,         oid_timeoutFocus,       oid_positionFocusLens, oid_systemLensFeatureControl,
    oid_systemLensFeatureStatus, oid_systemLensEquipped, oid_rangeZoomLimit,    oid_timeoutZoom,
    oid_positionZoomLens};
constexpr std::size_t kArc = 6; // index of 1206 in their OIDs

std::vector<const scripted::Call *> gScriptedCalls;

/** Values with which every range has an extent, and every output is another. */
void answerAsACamera(const scripted::Call &call) {
    std::vector<scripted::Value> outputs = call.outputs;
    std::int64_t number = 0;
    for (scripted::Value &output : outputs) {
        if (std::holds_alternative<std::int64_t>(output)) {
            output = number;
            number += 1000;
        }
    }
    scripted::core().answer(call.function, std::move(outputs));
}

void offerServices() {
    for (const std::string &service : scripted::everyService()) {
        scripted::core().targets(service, {service + "/1", service + "/2", service + "/3"});
    }
    for (const scripted::Call &call : scripted::everyCall()) {
        answerAsACamera(call);
    }
}

bool drivesAStepper(const FeatureModule &feature) {
    return feature.init == InitFocusStepper || feature.init == InitZoomStepper;
}

void startFeatures(bool steppers) {
    for (const FeatureModule &feature : gFeatureModules) {
        // The features are not marked as initialised, so the poll thread leaves them alone: an input must do the same
        // each time.
        if (drivesAStepper(feature) == steppers && !feature.init(GetIpcCookie())) {
            reportFinding("a feature did not start");
        }
    }
}

void startEveryFeature() {
    startFeatures(false);
    for (oid *object : kContestedObjects) {
        ++object[kArc];
    }
    startFeatures(true);
    for (oid *object : kContestedObjects) {
        --object[kArc];
    }
}

Objects registeredObjects() {
    Objects objects;
    for (netsnmp_subtree *subtree = netsnmp_subtree_find_first(""); subtree != nullptr; subtree = subtree->next) {
        netsnmp_handler_registration *registration = subtree->reginfo;
        // The agent's library itself registers the roots of the tree.
        const bool isOurs = registration != nullptr && registration->rootoid_len > kArc;
        if (isOurs && std::find(objects.begin(), objects.end(), registration) == objects.end()) {
            objects.push_back(registration);
        }
    }
    return objects;
}

scripted::Value outputValue(const scripted::Value &sample, Input &input) {
    if (std::holds_alternative<std::int64_t>(sample)) {
        return input.integer();
    }
    std::string text = input.octets();
    return text.empty() ? scripted::Value(nullptr) : scripted::Value(std::move(text));
}

/** Sizes that the agent passes for a type: that of an element, and the lowest and highest number of elements. */
struct TypeSize {
    unsigned char type;
    std::size_t size;
    std::size_t least;
    std::size_t most;
};

constexpr std::size_t kAnyNumber = 255;

constexpr TypeSize kTypeSizes[] = {
    {ASN_INTEGER, sizeof(long), 1, 1},
    {ASN_OCTET_STR, 1, 0, kAnyNumber},
    {ASN_UNSIGNED, sizeof(long), 1, 1},
    {ASN_COUNTER, sizeof(long), 1, 1},
    {ASN_TIMETICKS, sizeof(long), 1, 1},
    {ASN_UINTEGER, sizeof(long), 1, 1},
    {ASN_COUNTER64, sizeof(counter64), 1, 1},
    {ASN_OPAQUE_FLOAT, sizeof(float), 1, 1},
    {ASN_OPAQUE_DOUBLE, sizeof(double), 1, 1},
    {ASN_IPADDRESS, 4, 1, 1},
    {ASN_OBJECT_ID, sizeof(oid), 2, MAX_OID_LEN},
    {ASN_OPAQUE, 1, 0, kAnyNumber},
    {ASN_NSAP, 1, 0, kAnyNumber},
    {ASN_BIT_STR, 1, 0, kAnyNumber},
    {ASN_NULL, 1, 0, 0},
};

} // namespace

const Objects &startModule() {
    static const Objects objects = [] {
        requests::startAgentLibrary();
        offerServices();
        InitUtils();
        new QuarnSnmpTrapSend; // keeps itself, as the singleton
        startEveryFeature();
        return registeredObjects();
    }();
    return objects;
}

void scriptAnswer(Input &input) {
    const scripted::Call &call = scripted::everyCall().at(input.choice(scripted::everyCall().size()));
    gScriptedCalls.push_back(&call);
    const auto status = static_cast<std::int8_t>(input.octet());
    if (status != 0) {
        scripted::core().fail(call.function, status);
        return;
    }
    std::vector<scripted::Value> outputs;
    std::transform(call.outputs.begin(), call.outputs.end(), std::back_inserter(outputs),
                   [&input](const scripted::Value &sample) { return outputValue(sample, input); });
    scripted::core().answer(call.function, std::move(outputs));
}

void poll() {
    PollPower();
    PollTemperature();
    QuarnSnmpTrapSend::GetInstance()->CallSnmpSendTrap();
}

void endInput() {
    for (const scripted::Call *call : gScriptedCalls) {
        answerAsACamera(*call);
    }
    gScriptedCalls.clear();
    scripted::core().clearRecord();
    const std::vector<std::string> problems = scripted::core().problems();
    if (!problems.empty()) {
        reportFinding(problems.front());
    }
}

void appendSubIdentifiers(std::vector<oid> &name, Input &input) {
    constexpr std::uint8_t kFirstLarge = 0xF0;
    for (const char character : input.octets()) {
        if (name.size() < MAX_OID_LEN) {
            const auto octet = static_cast<std::uint8_t>(character);
            name.push_back(octet < kFirstLarge ? octet : 0xFFFFFF00U + octet);
        }
    }
}

std::vector<oid> variableName(const Objects &objects, Input &input) {
    constexpr std::uint8_t kNoObject = 0xFF;
    const std::uint8_t object = input.octet();
    std::vector<oid> name = {1, 3};
    if (object != kNoObject) {
        const netsnmp_handler_registration &registration = *objects.at(object % objects.size());
        name.assign(registration.rootoid, registration.rootoid + registration.rootoid_len);
    }
    appendSubIdentifiers(name, input);
    return name;
}

requests::NewValue variableValue(Input &input) {
    const TypeSize &chosen = kTypeSizes[input.choice(std::size(kTypeSizes))];
    if (chosen.type == ASN_INTEGER) {
        return requests::NewValue::integer(input.integer());
    }
    if (chosen.type == ASN_OBJECT_ID) {
        // Only valid OIDs: a response with another one cannot be encoded.
        std::vector<oid> identifier = {1, 3};
        appendSubIdentifiers(identifier, input);
        const auto *octets = reinterpret_cast<const char *>(identifier.data());
        return {chosen.type, std::string(octets, identifier.size() * sizeof(oid))};
    }
    std::string content = input.octets();
    content.resize(chosen.size * std::clamp(content.size() / chosen.size, chosen.least, chosen.most));
    return {chosen.type, std::move(content)};
}

} // namespace fuzz
