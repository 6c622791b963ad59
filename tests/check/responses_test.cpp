// SPDX-License-Identifier: Apache-2.0
// The parts of `check` that need no camera: responses, command lines, rules, and the document about them.
#include <fstream>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "check/exchange.h"
#include "check/message.h"
#include "check/rule.h"

namespace {

using namespace ptzctl::check;
using snmp::Response;
using snmp::Type;
using snmp::Varbind;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char *kPan = ".1.3.6.1.4.1.1206.4.2.7.2.1.0";
constexpr const char *kTilt = ".1.3.6.1.4.1.1206.4.2.7.2.2.0";

Request request(Verb verb) {
    Request result;
    result.verb = verb;
    result.varbinds = {snmp::integer(kPan, 1), snmp::integer(kTilt, 2)};
    return result;
}

std::vector<Violation> violations(Verb verb, const Response &response) {
    std::vector<Violation> list;
    for (const Problem &problem : problemsOf(request(verb), response)) {
        list.push_back(problem.violation);
    }
    return list;
}

const Varbind kFirst = snmp::integer(kPan, 1);
const Varbind kSecond = snmp::integer(kTilt, 2);

Varbind exception(const char *oid, Type type) {
    return {oid, type, 0, ""};
}

} // namespace

TEST(CheckResponses, ValidOnesHaveNoProblem) {
    EXPECT_THAT(violations(Verb::Get, {0, 0, {kFirst, kSecond}}), IsEmpty());
    EXPECT_THAT(violations(Verb::Get, {0, 0, {kFirst, exception(kTilt, Type::NoSuchObject)}}), IsEmpty());
    EXPECT_THAT(violations(Verb::GetNext, {0, 0, {kSecond, exception(kTilt, Type::EndOfMibView)}}), IsEmpty());
    EXPECT_THAT(violations(Verb::Set, {10, 2, {kFirst, kSecond}}), IsEmpty());
    EXPECT_THAT(violations(Verb::Get, {1, 0, {}}), IsEmpty()) << "tooBig has no varbinds";
    EXPECT_THAT(violations(Verb::Get, {5, 0, {kFirst, kSecond}}), IsEmpty()) << "genErr may concern the whole request";
}

TEST(CheckResponses, InvalidOnesHaveAName) {
    struct Row {
        Verb verb;
        Response response;
        Violation violation;
    };
    const std::vector<Row> rows = {
        {Verb::Get, {0, 0, {kFirst}}, Violation::WrongCount},
        {Verb::Get, {0, 0, {kFirst, kSecond, kSecond}}, Violation::WrongCount},
        {Verb::Get, {0, 0, {kSecond, kFirst}}, Violation::WrongOid},
        {Verb::Get, {0, 0, {kFirst, exception(kTilt, Type::Null)}}, Violation::WrongValue},
        {Verb::Get, {0, 0, {kFirst, exception(kTilt, Type::EndOfMibView)}}, Violation::WrongValue},
        {Verb::GetNext, {0, 0, {kFirst, exception(kTilt, Type::NoSuchObject)}}, Violation::WrongValue},
        {Verb::GetNext, {0, 0, {kFirst}}, Violation::WrongCount},
        {Verb::GetBulk, {0, 0, {kFirst}}, Violation::WrongCount},
        {Verb::Set, {0, 0, {kFirst, exception(kTilt, Type::NoSuchInstance)}}, Violation::WrongValue},
        {Verb::Get, {0, 1, {kFirst, kSecond}}, Violation::WrongIndex},
        {Verb::Set, {10, 3, {kFirst, kSecond}}, Violation::WrongIndex},
        {Verb::Set, {10, -1, {kFirst, kSecond}}, Violation::WrongIndex},
        {Verb::Set, {10, 0, {kFirst, kSecond}}, Violation::WrongIndex},
        {Verb::Set, {10, 1, {kFirst}}, Violation::WrongCount},
        {Verb::Get, {2, 1, {kFirst, kSecond}}, Violation::WrongStatus},
        {Verb::Get, {19, 1, {kFirst, kSecond}}, Violation::WrongStatus},
        {Verb::Get, {-1, 1, {kFirst, kSecond}}, Violation::WrongStatus},
    };
    for (const Row &row : rows) {
        EXPECT_THAT(violations(row.verb, row.response), ElementsAre(row.violation)) << &row - rows.data();
    }
}

TEST(CheckMessages, OnlyWholeOnesHaveAHeader) {
    const std::string octets("\x30\x1c\x02\x01\x01\x04\x06public\xa2\x0f\x02\x01\x2a\x02\x01\x00\x02\x01\x00\x30\x04"
                             "\x30\x02\x06\x00",
                             30);
    EXPECT_FALSE(headerOf(octets)) << "a varbind without a value";
    const std::string whole("\x30\x18\x02\x01\x01\x04\x06public\xa2\x0b\x02\x01\x2a\x02\x01\x00\x02\x01\x00\x30\x00",
                            26);
    const auto header = headerOf(whole);
    ASSERT_TRUE(header);
    EXPECT_EQ(header->command, kResponseTag);
    EXPECT_EQ(header->request, 42);
    for (std::size_t size = 0; size < whole.size(); ++size) {
        EXPECT_FALSE(headerOf(whole.substr(0, size))) << size;
    }
    EXPECT_FALSE(isSecureMessage(whole));
}

TEST(CheckCommands, RepeatRequests) {
    Request set = request(Verb::Set);
    set.varbinds = {snmp::integer(kPan, -1),
                    snmp::octetString(kTilt, std::string("\x02\x40", 2)),
                    snmp::octetString(kTilt, ""),
                    {kTilt, Type::Gauge32, 7, ""},
                    {kTilt, Type::Oid, 0, ".1.3"}};
    EXPECT_EQ(repeatLine(set, "-c x HOST"), std::string("snmpset -On -m '' -c x HOST ") + kPan + " i -1 " + kTilt +
                                                " x 0240 " + kTilt + " s '' " + kTilt + " u 7 " + kTilt + " o 1.3");
    Request bulk = request(Verb::GetBulk);
    bulk.varbinds.pop_back();
    bulk.bulk = {1, 10};
    EXPECT_EQ(repeatLine(bulk, "HOST"), std::string("snmpbulkget -Cn1 -Cr10 -On -m '' HOST ") + kPan);
    EXPECT_EQ(shellWord("a-b.c:1"), "a-b.c:1");
    EXPECT_EQ(shellWord("it's $HOME"), "'it'\\''s $HOME'");
    EXPECT_EQ(shellWord(""), "''");
}

TEST(CheckRules, HaveDifferentNamesAndAllTexts) {
    std::set<std::string> names;
    for (const Rule &rule : rules()) {
        EXPECT_TRUE(names.insert(rule.name).second) << rule.name;
        EXPECT_FALSE(rule.object.empty() || rule.expectation.empty() || rule.source.empty()) << rule.name;
        EXPECT_TRUE(rule.judge) << rule.name;
        EXPECT_EQ(&ruleNamed(rule.name), &rule);
    }
    EXPECT_THROW(ruleNamed("no-such-rule"), std::invalid_argument);
}

TEST(CheckRules, AreThoseOfTheDocument) {
    std::vector<std::string> expected;
    for (const Rule &rule : rules()) {
        expected.push_back("| `" + rule.name + "` | " + nameOf(rule.level) + " | " + rule.object + " | " +
                           rule.expectation + " |");
    }
    std::vector<std::string> documented;
    std::ifstream file(CHECK_DOCUMENT);
    for (std::string line; std::getline(file, line);) {
        if (line.rfind("| `", 0) == 0 && line.find("--") != 3) {
            documented.push_back(line);
        }
    }
    EXPECT_EQ(documented, expected);
}

TEST(CheckFindings, AreAsGraveAsTheWorstObject) {
    const auto resultOf = [](const std::vector<Result> &results) {
        std::vector<Detail> details;
        for (const Result result : results) {
            details.push_back({"object", result, "observation"});
        }
        return summarize(details).result;
    };
    EXPECT_EQ(resultOf({}), Result::NotEquipped);
    EXPECT_EQ(resultOf({Result::NotEquipped, Result::Skipped}), Result::Skipped);
    EXPECT_EQ(resultOf({Result::Pass, Result::Skipped, Result::NotEquipped}), Result::Pass);
    EXPECT_EQ(resultOf({Result::Pass, Result::Differs}), Result::Differs);
    EXPECT_EQ(resultOf({Result::Differs, Result::Error}), Result::Error);
    EXPECT_EQ(resultOf({Result::Fail, Result::Error}), Result::Fail);
}
