// SPDX-License-Identifier: Apache-2.0
// The names of the objects, against the users' reference of them.
#include <algorithm>
#include <set>
#include <stdexcept>

#include <gtest/gtest.h>

#include "objects.h"
#include "objects_document.h"

using namespace ptzctl;

namespace {

std::string syntaxText(const Object &object) {
    switch (object.syntax) {
    case Syntax::Integer:
        return "INTEGER";
    case Syntax::Gauge:
        return "Gauge32";
    case Syntax::Text:
        return "DisplayString";
    case Syntax::Octets:
        break;
    }
    return "OCTET STRING (SIZE (" + std::to_string(object.size) + "))";
}

std::string line(const std::string &name, const std::string &identifier, const std::string &access,
                 const std::string &syntax) {
    return name + " " + identifier + " " + access + " " + syntax;
}

} // namespace

TEST(Objects, AreThoseOfTheReference) {
    std::set<std::string> documented;
    for (const objects_document::ObjectRow &row : objects_document::objects("no heading has this", false)) {
        documented.insert(line(row.name, row.identifier, row.access, row.syntax));
    }
    std::set<std::string> known;
    for (const Object &object : objects()) {
        known.insert(
            line(object.name, object.identifier, object.writable ? "read-write" : "read-only", syntaxText(object)));
    }
    EXPECT_EQ(known, documented);
    EXPECT_EQ(known.size(), objects().size()) << "an object is there twice";
}

TEST(Objects, AreFoundByNameAndIdentifier) {
    for (const Object &object : objects()) {
        EXPECT_EQ(&objectOf(object.name), &object);
        EXPECT_EQ(identifierOf(object.name), object.identifier);
        EXPECT_EQ(identifierOf("." + std::string(object.identifier)), object.identifier);
        EXPECT_EQ(objectAt(object.identifier), &object);
        EXPECT_EQ(nameOf(object.identifier).rfind(object.name, 0), 0U);
    }
    EXPECT_EQ(identifierOf("relayStatesTable.3.2"), "1.3.6.1.4.1.99999.1.3.2.1.3.2");
    EXPECT_EQ(identifierOf("relayStatesTable.3.02"), "1.3.6.1.4.1.99999.1.3.2.1.3.2");
    EXPECT_EQ(identifierOf(".1.03.6"), "1.3.6");
    EXPECT_EQ(nameOf("1.3.6.1.4.1.99999.1.3.2.1.3.2"), "relayStatesTable.3.2");
    EXPECT_EQ(nameOf("1.3.6.1.2.1.1.5.0"), "1.3.6.1.2.1.1.5.0");
}

TEST(Objects, OtherNamesAreRefused) {
    for (const char *name : {"", "pan", "positionpan", "positionPan.0", "relayStatesTable", "relayStatesTable.3.x",
                             "relayStatesTable.3.", "1", "1.3.", "1..3", "1.3.4294967296", "1.3.-1"}) {
        EXPECT_THROW(identifierOf(name), std::invalid_argument) << name;
    }
}

TEST(Objects, TakeValuesOfTheirKind) {
    EXPECT_EQ(valueNamed("timeoutPan", "5000").number, 5000);
    EXPECT_EQ(valueNamed("presetGotoPosition", "7").type, Type::Integer);
    EXPECT_EQ(valueNamed("positionPan", "02 40 78 69").octets, "\x02\x40\x78\x69");
    EXPECT_EQ(valueNamed("relayStatesTable.3.2", "1").identifier, "1.3.6.1.4.1.99999.1.3.2.1.3.2");
    for (const auto &[name, text] : {std::pair{"timeoutPan", "x"},
                                     {"timeoutPan", "5 "},
                                     {"timeoutPan", "2147483648"},
                                     {"positionPan", "4"},
                                     {"modelName", "x"},
                                     {"1.3.6.1.2.1.1.5.0", "x"}}) {
        EXPECT_THROW(valueNamed(name, text), std::invalid_argument) << name << " " << text;
    }
}

TEST(Objects, SayWhyAValueIsNotTheirs) {
    const Object &pan = objectOf("positionPan");
    EXPECT_EQ(whyNotOf(pan, octetString(pan.identifier, "four")), "");
    EXPECT_EQ(whyNotOf(pan, octetString(pan.identifier, "abc")),
              "the camera answered 3 octets (61 62 63) where 4 were expected");
    EXPECT_EQ(whyNotOf(pan, integer(pan.identifier, 1)), "the camera answered INTEGER where OCTET STRING was expected");
    const Object &preset = objectOf("presetGotoPosition");
    EXPECT_EQ(whyNotOf(preset, integer(preset.identifier, 1)), "");
    EXPECT_EQ(whyNotOf(preset, octetString(preset.identifier, "x")), "");
    EXPECT_NE(whyNotOf(objectOf("temperature"), integer("1.3", 1)), "");
}
