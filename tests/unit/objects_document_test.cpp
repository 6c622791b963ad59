// SPDX-License-Identifier: Apache-2.0
// The users' reference of objects against what the module registers, answers and calls.
#include <algorithm>
#include <set>

#include "every_call.h"
#include "gpio_pdu.h"
#include "module_test.h"
#include "objects_document.h"

using objects_document::ObjectRow;

namespace {

void answerEveryCall() {
    for (const scripted::Call &call : scripted::everyCall()) {
        scripted::core().answer(call.function, call.outputs);
    }
}

/** The calls of the record as the reference writes them: each once, without what all names have. */
std::string recordedCalls() {
    std::set<std::string> names;
    for (const std::string &call : scripted::core().calls()) {
        const std::string name = call.substr(0, call.find('('));
        const std::string prefix = "zorva_api_";
        const std::string suffix = "_send";
        EXPECT_EQ(name.rfind(prefix, 0), 0U) << name;
        names.insert("`" + name.substr(prefix.size(), name.size() - prefix.size() - suffix.size()) + "`");
    }
    std::string text;
    for (const std::string &name : names) {
        text += (text.empty() ? "" : ", ") + name;
    }
    return text.empty() ? "–" : text;
}

std::string syntaxOf(const Answer &answer) {
    switch (answer.type) {
    case ASN_INTEGER:
        return "INTEGER";
    case ASN_UNSIGNED:
        return "Gauge32";
    case ASN_OCTET_STR: {
        const bool isText = answer.octets.size() >= 4 && answer.octets.find('\0') == std::string::npos;
        return isText ? "DisplayString" : "OCTET STRING (SIZE (" + std::to_string(answer.octets.size()) + "))";
    }
    default:
        return "type " + std::to_string(answer.type);
    }
}

/** Values of which each writable object accepts at least one. */
std::vector<NewValue> samples() {
    std::vector<NewValue> values;
    for (const long number : {0L, 1L}) {
        values.push_back(NewValue::integer(number));
    }
    using namespace std::string_view_literals;
    for (const std::string_view octets :
         {"\0\0\0\0"sv, "\1\1\1\1"sv, "\2\1\1\1"sv, "\3\1\0\0"sv, "\xC0\0"sv, "\xC0\x80"sv, "\1\x80"sv, "\x40"sv}) {
        values.push_back(NewValue::text(octets));
    }
    return values;
}

/** A GET, and the calls that it made. */
Answer read(const std::string &instance, std::string &calls) {
    scripted::core().clearRecord();
    Pdu pdu{{instance}};
    EXPECT_EQ(pdu.run(MODE_GET), SNMP_ERR_NOERROR) << instance;
    calls = recordedCalls();
    return pdu.answer(0);
}

/** Sets all samples. @return true if the object accepted one */
bool write(const std::string &instance, std::string &calls) {
    scripted::core().clearRecord();
    bool taken = false;
    for (const NewValue &value : samples()) {
        Pdu pdu{{instance, value}};
        taken = pdu.set() == SNMP_ERR_NOERROR || taken;
    }
    calls = recordedCalls();
    return taken;
}

/** The row that the reference should have for an instance. */
ObjectRow observed(const std::string &name, const std::string &instance, bool registeredWritable) {
    ObjectRow row;
    row.name = name;
    row.oid = instance;
    read(instance, row.getCalls); // the first GET may ask the camera for a value that the module then keeps
    row.syntax = syntaxOf(read(instance, row.getCalls));
    const bool taken = write(instance, row.setCalls);
    row.access = taken || registeredWritable ? "read-write" : "read-only";
    return row;
}

/** Everything that is registered below the module's arcs. */
std::set<const netsnmp_handler_registration *> registrations() {
    std::set<const netsnmp_handler_registration *> found;
    for (const char *arc : {"1.3.6.1.4.1.1206", "1.3.6.1.4.1.99999"}) {
        const std::vector<oid> root = requests::parseOid(arc);
        for (const netsnmp_subtree *subtree = netsnmp_subtree_find_first(""); subtree != nullptr;
             subtree = subtree->next) {
            const netsnmp_handler_registration *registration = subtree->reginfo;
            if (registration != nullptr && registration->rootoid_len > root.size() &&
                std::equal(root.begin(), root.end(), registration->rootoid)) {
                found.insert(registration);
            }
        }
    }
    return found;
}

/** Rows for all that is registered. */
std::vector<ObjectRow> registeredObjects() {
    std::vector<ObjectRow> rows;
    for (const netsnmp_handler_registration *registration : registrations()) {
        std::string registered;
        for (std::size_t i = 0; i < registration->rootoid_len; ++i) {
            registered += (i != 0 ? "." : "") + std::to_string(registration->rootoid[i]);
        }
        const std::string name = registration->handlerName;
        if (name.find("StatesTable") == std::string::npos) {
            rows.push_back(observed(name, registered + ".0", (registration->modes & HANDLER_CAN_SET) != 0));
            continue;
        }
        for (const char *column : {"1", "2", "3"}) {
            rows.push_back(observed(name + "." + column, registered + ".1." + column + ".1", false));
        }
    }
    return rows;
}

class ObjectsDocumentTest : public ModuleTest {
protected:
    void SetUp() override {
        openCore();
        answerEveryCall();
    }

    static void offer(const std::vector<std::string> &services) {
        for (const std::string &service : services) {
            core().targets(service, {service + "/1"});
        }
    }

    /** Starts every feature, compares, and ends what has started. */
    static void expectDocumented(const std::vector<ObjectRow> &documented) {
        std::vector<void (*)()> ends;
        for (const FeatureModule &feature : gFeatureModules) {
            if (feature.init(GetIpcCookie())) {
                ends.push_back(feature.deinit);
            }
        }
        EXPECT_THAT(documented, Not(IsEmpty()));
        EXPECT_THAT(documented, testing::UnorderedElementsAreArray(registeredObjects()));
        for (void (*end)() : ends) {
            end();
        }
    }
};

} // namespace

TEST_F(ObjectsDocumentTest, DescribesEachObjectOfACameraWithAMotorDrivenLens) {
    offer({"alarm", "device_information", "device_management", "exposure", "iris", "lens_focus", "positioning", "power",
           "presets_tours", "relay", "temperature"});
    expectDocumented(objects_document::objects("stepper", false));
}

TEST_F(ObjectsDocumentTest, DescribesEachObjectOfAStepperLens) {
    offer({"exposure", "focus_stepper", "zoom_stepper"});
    for (FeatureModule &feature : gFeatureModules) {
        if (feature.init != InitFocusStepper && feature.init != InitZoomStepper) {
            feature.init = [](void *) { return false; };
        }
    }
    expectDocumented(objects_document::objects("stepper", true));
}
