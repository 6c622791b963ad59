// SPDX-License-Identifier: Apache-2.0
// The table of objects and the values that they accept. The reference and the MIB modules are checked against the
// table.
#include <algorithm>
#include <set>
#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "object_oids.h"
#include "object_table.h"
#include "object_values.h"
#include "objects_document.h"
#include "oid_text.h"

using namespace ptz;
using testing::UnorderedElementsAreArray;

namespace {

std::string syntaxText(const Syntax &syntax) {
    switch (syntax.kind) {
    case Kind::Integer:
        return "INTEGER";
    case Kind::Gauge32:
        return "Gauge32";
    case Kind::Text:
        return "DisplayString";
    case Kind::Octets:
        break;
    }
    return "OCTET STRING (SIZE (" + std::to_string(syntax.highest) + "))";
}

/** A row of the reference as one text. */
std::string line(const std::string &name, const std::string &oid, const std::string &access,
                 const std::string &syntax) {
    return name + " " + oid + " " + access + " " + syntax;
}

} // namespace

TEST(Objects, AreThoseOfTheReference) {
    std::vector<std::string> listed;
    for (const Object &object : objects()) {
        listed.push_back(line(object.name, snmp::withoutDot(instanceNamed(object.name).oid),
                              object.access == Access::ReadWrite ? "read-write" : "read-only",
                              syntaxText(object.syntax)));
    }
    std::set<std::string> documented; // each once: two kinds of lens have the same objects
    for (const objects_document::ObjectRow &row : objects_document::objects("no heading has this", false)) {
        documented.insert(line(row.name, row.oid, row.access, row.syntax));
    }
    EXPECT_THAT(listed, UnorderedElementsAreArray(documented));
}

TEST(Objects, AreInTheOrderOfTheirOids) {
    EXPECT_TRUE(std::is_sorted(objects().begin(), objects().end(), [](const Object &left, const Object &right) {
        return snmp::comesBefore(left.oid, right.oid);
    }));
}

TEST(Objects, AreFoundByNameAndOid) {
    for (const Object &object : objects()) {
        const Instance instance = instanceNamed(object.name);
        EXPECT_EQ(instance.object, &object);
        EXPECT_EQ(instance.name, object.name + std::string(object.isColumn ? ".1" : ""));
        EXPECT_EQ(instanceAt(instance.oid).object, &object);
        EXPECT_EQ(instanceNamed(snmp::withoutDot(instance.oid)).oid, instance.oid);
    }
    const std::string secondRelay = oids::row(oids::relayStatesState, 2);
    EXPECT_EQ(instanceNamed("relayStatesTable.3.2").oid, secondRelay);
    EXPECT_EQ(instanceNamed("relayStatesTable.3.02").oid, secondRelay);
    EXPECT_EQ(instanceAt(secondRelay).name, "relayStatesTable.3.2");
    EXPECT_EQ(instanceNamed(".1.03.6").oid, ".1.3.6");
    EXPECT_EQ(instanceAt(oids::sysContact).object, nullptr);
    EXPECT_EQ(instanceAt(oids::sysContact).name, snmp::withoutDot(oids::sysContact));
}

TEST(Objects, OtherNamesAreRefused) {
    for (const char *name : {"", "pan", "positionpan", "positionPan.0", "relayStatesTable", "relayStatesTable.3.x",
                             "relayStatesTable.3.", "1", "1.3.", "1..3", "1.3.4294967296", "1.3.-1"}) {
        EXPECT_THROW(instanceNamed(name), std::invalid_argument) << name;
    }
}

TEST(Objects, TakeValuesOfTheirKind) {
    const auto parsed = [](const char *name, const char *text) {
        return parseAssignment(instanceNamed(name), text).value;
    };
    EXPECT_EQ(parsed("timeoutPan", "5000"), snmp::integer(oids::timeoutPan, 5000));
    EXPECT_EQ(parsed("presetGotoPosition", "7"), snmp::integer(oids::presetGotoPosition, 7));
    EXPECT_EQ(parsed("positionPan", "02 40 78 69"), snmp::octetString(oids::positionPan, "\x02\x40\x78\x69"));
    EXPECT_EQ(parsed("relayStatesTable.3.2", "1"), snmp::integer(oids::row(oids::relayStatesState, 2), 1));
    for (const auto &[name, text] : {std::pair{"timeoutPan", "x"},
                                     {"timeoutPan", "5 "},
                                     {"timeoutPan", "2147483648"},
                                     {"positionPan", "4"},
                                     {"modelName", "x"},
                                     {oids::sysContact, "x"}}) {
        EXPECT_THROW(parsed(name, text), std::invalid_argument) << name << " " << text;
    }
}

TEST(Objects, ValidateTypeAndLength) {
    const auto deviation = [](const char *name, const snmp::Varbind &value) {
        return validate(*instanceNamed(name).object, value);
    };
    EXPECT_EQ(deviation("positionPan", snmp::octetString("", "four")), "");
    EXPECT_EQ(deviation("positionPan", snmp::octetString("", "abc")), "3 octets (61 62 63) instead of 4");
    EXPECT_EQ(deviation("positionPan", snmp::integer("", 1)), "INTEGER instead of OCTET STRING");
    EXPECT_EQ(deviation("presetGotoPosition", snmp::integer("", 1)), "");
    EXPECT_EQ(deviation("presetGotoPosition", snmp::octetString("", "x")), "");
    EXPECT_NE(deviation("temperature", snmp::integer("", 1)), "");
}
