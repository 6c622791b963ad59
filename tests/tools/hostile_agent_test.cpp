// SPDX-License-Identifier: Apache-2.0
// The program with agents that send wrong answers. It always ends in time, names the error, takes no wrong value for
// one of the camera, and prints nothing that controls a terminal or breaks JSON.
#include <algorithm>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "hostile_agent.h"
#include "object_oids.h"
#include "object_table.h"
#include "process.h"
#include "temporary_directory.h"

namespace {

using namespace std::string_literals;
using nlohmann::json;
using snmp::Type;
using snmp::Varbind;
using testing::HasSubstr;
using testing::StartsWith;
using wrong::Reply;
using wrong::Request;

constexpr int kRefused = 1;
constexpr int kNoAnswer = 3;
constexpr int kBadResponse = 5;

/** Changes a right response. */
using Spoil = std::function<void(const Request &, Reply &)>;

/** Changes the octets of a right response. */
using SpoilOctets = std::function<std::string(std::string)>;

/** Makes the right response to a GET: a temperature of 31 degrees, and zeros. */
Reply rightReply(const Request &request) {
    Reply reply{request.id, 0, 0, {}};
    for (const Varbind &varbind : request.varbinds) {
        const ptz::Object *const object = ptz::instanceAt(varbind.oid).object;
        const ptz::Kind kind = object != nullptr ? object->syntax.kind : ptz::Kind::Integer;
        if (kind == ptz::Kind::Integer || kind == ptz::Kind::Gauge32) {
            reply.varbinds.push_back({varbind.oid, kind == ptz::Kind::Integer ? Type::Integer : Type::Gauge32, 31, ""});
        } else {
            const bool isText = kind == ptz::Kind::Text;
            reply.varbinds.push_back(snmp::octetString(
                varbind.oid, isText ? "text" : std::string(static_cast<std::size_t>(object->syntax.highest), '\0')));
        }
    }
    return reply;
}

hostile::Script spoiling(const Spoil &spoil) {
    return [spoil](const Request &request) {
        Reply reply = rightReply(request);
        spoil(request, reply);
        return std::vector<std::string>{wrong::encode(reply, request.community)};
    };
}

hostile::Script spoilingOctets(const SpoilOctets &spoil) {
    return [spoil](const Request &request) {
        return std::vector<std::string>{spoil(wrong::encode(rightReply(request), request.community))};
    };
}

/** Replaces a value. */
hostile::Script answering(const Varbind &value) {
    return spoiling([value](const Request &, Reply &reply) {
        for (Varbind &varbind : reply.varbinds) {
            varbind = {varbind.oid, value.type, value.number, value.octets};
        }
    });
}

std::string replaced(std::string text, const std::string &part, const std::string &other) {
    const std::size_t at = text.find(part);
    EXPECT_NE(at, std::string::npos);
    return text.replace(at, part.size(), other);
}

/** Makes an element of BER whose content may have any size, with a length of four octets. */
std::string element(char tag, const std::string &content) {
    std::string length;
    for (int shift = 24; shift >= 0; shift -= 8) {
        length += static_cast<char>(content.size() >> shift & 0xFFU);
    }
    return std::string(1, tag) + '\x84' + length + content;
}

/** Makes sequences within each other. */
std::string nested(int depth) {
    std::string octets = "\x05\x00"s;
    for (int i = 0; i < depth; ++i) {
        octets = element(0x30, octets);
    }
    return octets;
}

/** Runs the program with short time-outs. */
support::CommandResult run(const hostile::Agent &agent, const std::vector<std::string> &command,
                           const std::string &timeout = "0.3") {
    const support::TemporaryDirectory directory;
    std::vector<std::string> arguments = {PTZCTL_PROGRAM, "-H", agent.host(), "-c", "public", "-t", timeout};
    arguments.insert(arguments.end(), command.begin(), command.end());
    return support::runCommand(arguments, {{"SNMPCONFPATH", directory.path()}, {"HOME", directory.path()}});
}

bool isHarmless(const std::string &text) {
    // The program itself writes degrees only.
    std::string rest = text;
    for (const char *own : {"°", "…"}) {
        for (std::size_t at = rest.find(own); at != std::string::npos; at = rest.find(own)) {
            rest.erase(at, std::string(own).size());
        }
    }
    return std::all_of(rest.begin(), rest.end(),
                       [](char octet) { return octet == '\n' || (octet >= ' ' && octet <= '~'); });
}

/** Reads an object as text and as JSON. Both must fail. */
void expectError(const std::string &name, const hostile::Script &script, const std::vector<std::string> &command,
                 int code, const std::string &error) {
    const hostile::Agent agent(script);
    const support::CommandResult text = run(agent, command);
    EXPECT_EQ(text.status.code, code) << name << ": " << text.output << text.errors;
    EXPECT_THAT(text.errors + text.output, HasSubstr(error)) << name;
    EXPECT_TRUE(isHarmless(text.output + text.errors)) << name << ": " << text.output << text.errors;
    std::vector<std::string> asJson = command;
    asJson.insert(asJson.begin(), "--json");
    const json data = json::parse(run(agent, asJson).output);
    EXPECT_EQ(data.at("ok"), false) << name;
    for (const auto &[key, value] : data.items()) {
        const bool isValue = key != "host" && key != "ok" && key != "error";
        EXPECT_TRUE(!isValue || value.contains("problem")) << name << ": " << key << " is " << value;
    }
}

struct Row {
    const char *name;
    hostile::Script script;
    int code;
    std::string error;
};

} // namespace

TEST(HostileAgent, AWrongResponseIsAnErrorWithAName) {
    const std::string power = oids::power;
    const std::vector<Row> rows = {
        {"another OID", spoiling([&](auto &, Reply &reply) { reply.varbinds[0].oid = power; }), kBadResponse,
         "the camera answered power to a request for temperature"},
        {"no varbind", spoiling([](auto &, Reply &reply) { reply.varbinds.clear(); }), kBadResponse,
         "the camera answered 0 values to a request for 1"},
        {"two varbinds", spoiling([](auto &, Reply &reply) { reply.varbinds.push_back(reply.varbinds[0]); }),
         kBadResponse, "the camera answered 2 values to a request for 1"},
        {"a text", answering(snmp::octetString("", "31")), kRefused, "OCTET STRING instead of Gauge32"},
        {"an INTEGER", answering(snmp::integer("", 31)), kRefused, "INTEGER instead of Gauge32"},
        {"NULL", answering({"", Type::Null, 0, ""}), kRefused, "the camera answered NULL"},
        {"noSuchObject", answering({"", Type::NoSuchObject, 0, ""}), kRefused, "the camera does not have it"},
        {"endOfMibView", answering({"", Type::EndOfMibView, 0, ""}), kRefused, "the camera answered endOfMibView"},
        {"an unknown error", spoiling([](auto &, Reply &reply) { reply.error = 4711; }), kRefused, "error status 4711"},
        {"a negative error", spoiling([](auto &, Reply &reply) { reply.error = -1; }), kRefused, "error status"},
        {"an error of varbind 99", spoiling([](auto &, Reply &reply) {
             reply.error = 5;
             reply.errorIndex = 99;
         }),
         kRefused, "genErr"},
        {"tooBig for one", spoiling([](auto &, Reply &reply) {
             reply.error = 1;
             reply.varbinds.clear();
         }),
         kRefused, "tooBig"},
        {"another community",
         spoilingOctets([](const std::string &octets) { return replaced(octets, "public", "publix"); }), kBadResponse,
         "the answer has another community"},
        {"a report", spoilingOctets([](const std::string &octets) { return replaced(octets, "\xA2", "\xA8"); }),
         kBadResponse, "the answer is a message of type A8"},
        {"a report about time", spoiling([](auto &, Reply &reply) {
             reply.varbinds[0] = {".1.3.6.1.6.3.15.1.1.2.0", Type::Counter32, 1, ""};
         }),
         kBadResponse, "the camera answered 1.3.6.1.6.3.15.1.1.2.0"},
        {"an OID of 128 numbers", spoiling([](auto &, Reply &reply) {
             for (int i = 0; i < 114; ++i) {
                 reply.varbinds[0].oid += ".4294967295";
             }
         }),
         kBadResponse, "the camera answered 1.3.6.1.4.1.99999"},
        {"another request's ID", spoiling([](auto &, Reply &reply) { ++reply.id; }), kNoAnswer, "no answer"},
    };
    for (const auto &[name, script, code, error] : rows) {
        expectError(name, script, {"get", "temperature"}, code, error);
    }
}

TEST(HostileAgent, OctetsThatAreNoMessageAreNoAnswer) {
    const std::vector<std::pair<const char *, SpoilOctets>> rows = {
        {"nothing", [](auto) { return ""s; }},
        {"rubbish", [](auto) { return std::string(60000, '\xFF'); }},
        {"a part", [](const std::string &octets) { return octets.substr(0, octets.size() / 2); }},
        {"a length beyond the end",
         [](std::string octets) {
             octets[1] = 127;
             return octets;
         }},
        {"version 1",
         [](const std::string &octets) {
             return replaced(octets, "\x02\x01\x01\x04\x06public"s, "\x02\x01\x00\x04\x06public"s);
         }},
        {"a request", [](const std::string &octets) { return replaced(octets, "\xA2", "\xA0"); }},
        {"the largest length",
         [](const std::string &octets) { return "\x30\x84\xFF\xFF\xFF\xFF"s + octets.substr(2); }},
        {"an indefinite length", [](const std::string &octets) { return "\x30\x80"s + octets.substr(2); }},
        {"depth", [](auto) { return nested(5000); }},
    };
    for (const auto &[name, spoil] : rows) {
        expectError(name, spoilingOctets(spoil), {"get", "temperature"}, kNoAnswer, "no answer");
    }
    expectError("depth within a value", answering({"", static_cast<Type>(0x30), 0, nested(5000)}),
                {"get", "temperature"}, kNoAnswer, "no answer");
    expectError("an OID of 129 numbers", spoiling([](auto &, Reply &reply) {
                    // As octets of a value: the encoder refuses such an OID.
                    reply.varbinds[0].type = static_cast<Type>(0x06);
                    reply.varbinds[0].octets = ".1.3";
                    reply.varbinds[0].oid = ".1.3";
                }),
                {"get", "temperature"}, kBadResponse, "the camera answered 1.3");
}

TEST(HostileAgent, AValueOfTheWrongSizeIsNone) {
    expectError("a long position", answering(snmp::octetString("", std::string(60000, '\x02'))), {"get", "positionPan"},
                kRefused, "60000 octets (02 02 02 02 02 02 02 02 02 02 02 02 02 02 02 02 ...) instead of 4");
    expectError("an empty position", answering(snmp::octetString("", "")), {"get", "positionPan"}, kRefused,
                "0 octets () instead of 4");
    expectError("a long text", answering(snmp::octetString("", std::string(60000, 'x'))), {"get", "modelName"},
                kRefused, "60000 octets instead of at most 255");
    expectError("a large number", answering(snmp::integer("", 2147483647)), {"get", "power"}, kRefused,
                "2147483647, which no camera can mean");
    expectError("a small number", answering(snmp::integer("", -2147483648)), {"get", "rangePanLeftLimit"}, kRefused,
                "-2147483648, which no camera can mean");
    expectError("a number of nine octets", answering({"", Type::Counter64, -1, ""}), {"get", "power"}, kRefused,
                "Counter64 instead of INTEGER");
    expectError("an unknown type", answering({"", static_cast<Type>(0x47), 0, "\x01"}), {"get", "1.3.6.1.4.1.1.0"},
                kRefused, "the camera answered type 47");
    // A float within Opaque, which the library unpacks.
    expectError("a float", answering({"", Type::Opaque, 0, "\x9F\x78\x04\x42\x28\x00\x00"s}), {"get", "power"},
                kRefused, "Opaque instead of INTEGER");
}

TEST(HostileAgent, TextsControlNoTerminalAndBreakNoJson) {
    for (const std::string &text : {"a\033[2J\a\b\r\nb"s,
                                    "a\xC2\x9B"
                                    "2Jb"s,
                                    "a\xE2\x80\xAE"
                                    "b\xE2\x81\xA6"s,
                                    "a\xFF\xFE\x80"
                                    "b"s,
                                    "a\xED\xA0\x80"
                                    "b"s,
                                    "a\0b"s,
                                    "a\x7F\x9B"
                                    "b"s}) {
        const hostile::Agent agent(answering(snmp::octetString("", text)));
        for (const char *name : {"modelName", "1.3.6.1.2.1.1.1.0"}) {
            const support::CommandResult result = run(agent, {"get", name});
            EXPECT_TRUE(isHarmless(result.output + result.errors)) << result.output;
            const support::CommandResult data = run(agent, {"--json", "get", name});
            EXPECT_NO_THROW(EXPECT_TRUE(json::parse(data.output).is_object())) << data.output;
            EXPECT_TRUE(isHarmless(data.output)) << data.output;
        }
        const support::CommandResult line = run(agent, {"probe"});
        EXPECT_TRUE(isHarmless(line.output)) << line.output;
        EXPECT_EQ(std::count(line.output.begin(), line.output.end(), '\n'), 1);
    }
}

TEST(HostileAgent, AnEndlessTableEnds) {
    const auto successor = [](const std::function<std::string(const std::string &)> &next) {
        return spoiling([next](const Request &request, Reply &reply) {
            if (request.command == wrong::Command::GetNext) {
                reply.varbinds = {snmp::integer(next(request.varbinds[0].oid), 1)};
            }
        });
    };
    const std::string column = oids::alarmStatesState;
    int row = 0;
    const hostile::Agent endless(successor([&](const std::string &) { return column + "." + std::to_string(++row); }));
    const support::CommandResult rows = run(endless, {"inputs"});
    EXPECT_EQ(rows.status.code, kBadResponse);
    EXPECT_THAT(rows.errors, HasSubstr("the camera answered more than 64 rows of alarmStatesTable.3"));
    EXPECT_LE(endless.requests(), 66);
    const hostile::Agent circling(successor([&](const std::string &) { return column + ".1"; }));
    EXPECT_THAT(run(circling, {"inputs"}).errors, HasSubstr("as the successor of"));
    EXPECT_EQ(circling.requests(), 2);
    const hostile::Agent returning(successor([&](const std::string &last) { return last; }));
    EXPECT_THAT(run(returning, {"inputs"}).errors, HasSubstr("as the successor of"));
    const hostile::Agent failing(spoiling([](const Request &request, Reply &reply) {
        reply.error = request.command == wrong::Command::GetNext ? 5 : 0;
    }));
    EXPECT_EQ(run(failing, {"inputs"}).status.code, kBadResponse);
    EXPECT_LE(failing.requests(), 140);
}

// The flood lasts until the agent ends, and so would a program that takes the time only between messages.
TEST(HostileAgent, AFloodPutsOffNoTimeOut) {
    const hostile::Agent agent(spoiling([](const Request &, Reply &reply) { ++reply.id; }), hostile::Manner::Flood);
    EXPECT_EQ(run(agent, {"get", "temperature"}, "0.2").status.code, kNoAnswer);
}

TEST(HostileAgent, AWrongResponseToAWriteIsNoSuccess) {
    const auto writing = [](const Spoil &spoil) {
        return spoiling([spoil](const Request &request, Reply &reply) {
            reply.varbinds = request.varbinds;
            if (request.command == wrong::Command::Set) {
                spoil(request, reply);
            } else {
                reply = rightReply(request);
            }
        });
    };
    const std::vector<std::pair<Spoil, std::string>> rows = {
        {[](auto &, Reply &reply) { reply.varbinds[0].oid = oids::power; }, "the camera answered power"},
        {[](auto &, Reply &reply) { reply.varbinds.clear(); }, "the camera answered 0 values"},
        {[](auto &, Reply &reply) {
             reply.varbinds[0] = {oids::rebootDevice, Type::Null, 0, ""};
         },
         "rebootDevice: the camera answered NULL"},
        {[](auto &, Reply &reply) { reply.varbinds[0] = snmp::octetString(oids::rebootDevice, "\x01"); },
         "rebootDevice: the camera answered OCTET STRING instead of INTEGER"},
    };
    for (const auto &[spoil, error] : rows) {
        const hostile::Agent agent(writing(spoil));
        const support::CommandResult result = run(agent, {"reboot", "--yes"});
        EXPECT_EQ(result.status.code, kBadResponse) << result.output;
        EXPECT_THAT(result.errors, HasSubstr(error));
    }
}
