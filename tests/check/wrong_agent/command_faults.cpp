// SPDX-License-Identifier: Apache-2.0
#include "fault_families.h"
#include "fault_parts.h"
#include "netsnmp_types.h"
#include "object_oids.h"
#include "oid_text.h"

namespace wrong {

using snmp::Type;
using snmp::Varbind;

std::vector<Fault> writeFaults() {
    return {
        {"timeout-range", "accepts time-outs of more than 65535 ms",
         accepts("timeoutPan",
                 [](const Varbind &value) { return value.type == Type::Integer && value.number > 65535; })},
        {"set-present", "changes a time-out when it is set to its present value",
         [](Model &model, Behaviour & /*behaviour*/) {
             model.named("timeoutIris").write = [&model](const Varbind &value) {
                 std::int64_t &timeout = model.axis(4).timeout;
                 timeout = timeout == value.number ? value.number + 1 : value.number;
             };
         }},
        {"set-response", "answers a SET with another value", distorts([](const Request &request, Reply &reply) {
             if (request.command == Command::Set && reply.error == 0 &&
                 reply.varbinds[0].oid == oids::rangeTrueNorthOffset) {
                 ++reply.varbinds[0].number;
             }
         })},
        {"set-many", "refuses a SET of several objects", distorts([](const Request &request, Reply &reply) {
             const bool isOfSettings = request.command == Command::Set && request.varbinds.size() > 2 &&
                                       request.varbinds[0].type == Type::Integer;
             if (isOfSettings) {
                 fail(request, reply, SNMP_ERR_GENERR, 1);
             }
         })},
        {"set-read-only", "accepts a SET of rangeZoomLimit", accepts("rangeZoomLimit", isAny)},
        {"set-missing", "accepts a SET of an unknown object",
         distortsUnknown(Command::Set,
                         [](Reply &reply) {
                             reply.error = 0;
                             reply.errorIndex = 0;
                         })},
        {"timeout-set-type", "accepts other types for a time-out",
         accepts("timeoutIris",
                 [](const Varbind &value) { return value.type != Type::Integer && value.type != Type::Octets; })},
        {"timeout-set-length", "accepts octets for a time-out",
         accepts("timeoutIris",
                 [](const Varbind &value) { return value.type == Type::Octets && value.octets.size() > 4; })},
        {"set-atomic", "applies the good part of a refused SET",
         [](Model & /*model*/, Behaviour &behaviour) {
             behaviour.appliesAnyway = [](const Varbind &value) { return value.type == Type::Integer; };
         }},
        {"read-community", "lets the community for reading write",
         [](Model & /*model*/, Behaviour &behaviour) { behaviour.readersWrite = true; }},
    };
}

std::vector<Fault> moveFaults() {
    const char *const iris = "positionIrisLens";
    return {
        {"move-stop", "refuses a stop of the iris", distorts([](const Request &request, Reply &reply) {
             if (request.command == Command::Set && request.varbinds.size() == 1 &&
                 request.varbinds[0].oid == oids::positionIrisLens && isStop(request.varbinds[0])) {
                 fail(request, reply, SNMP_ERR_GENERR, 1);
             }
         })},
        {"move-stop-all", "refuses a stop of all axes in one SET", distorts([](const Request &request, Reply &reply) {
             if (request.command == Command::Set && request.varbinds.size() > 2 && isStop(request.varbinds[0])) {
                 fail(request, reply, SNMP_ERR_GENERR, 1);
             }
         })},
        {"move-mode", "accepts mode 4",
         accepts(iris,
                 [](const Varbind &value) {
                     return value.octets == std::string({4, 0, 0, 0});
                 })},
        {"move-stop-speed", "accepts a stop with a speed",
         accepts(iris, [](const Varbind &value) { return hasMode(value, ptz::Mode::Stop) && !isStop(value); })},
        {"move-range", "accepts 360.00 degrees",
         accepts("positionPan",
                 [](const Varbind &value) {
                     return value.octets.size() == ptz::kCommandSize && value.octets.substr(2) == "\x8C\xA0";
                 })},
        {"move-type", "accepts an INTEGER as a command",
         accepts(iris, [](const Varbind &value) { return value.type == Type::Integer; })},
        {"move-atomic", "executes the good command of a refused SET",
         [](Model & /*model*/, Behaviour &behaviour) {
             behaviour.appliesAnyway = [](const Varbind &value) { return value.type == Type::Octets; };
         }},
        {"move-byte-order", "answers a command with its octets swapped",
         [](Model &model, Behaviour & /*behaviour*/) {
             model.named("positionTilt").read = [&model] {
                 std::string command = model.axis(1).command;
                 std::swap(command[2], command[3]);
                 return octets(command);
             };
         }},
        {"move-absolute", "refuses absolute moves", refuses(iris, ofMode(ptz::Mode::Absolute))},
        {"move-answer", "answers a command with other octets",
         [](Model &model, Behaviour & /*behaviour*/) {
             model.named("positionIrisLens").read = [&model] {
                 const bool isFirst = model.axis(4).command == std::string(ptz::kCommandSize, '\0');
                 return octets(std::string(ptz::kCommandSize, isFirst ? '\0' : '\x63'));
             };
         }},
        {"move-delta", "refuses steps", refuses(iris, ofMode(ptz::Mode::Delta))},
        {"move-continuous", "refuses continuous moves", refuses(iris, ofMode(ptz::Mode::Continuous))},
        {"preset-recall-range", "accepts preset 256",
         accepts("presetGotoPosition", [](const Varbind &value) { return value.number == 256; })},
        {"preset-recall", "refuses to recall a preset", refuses("presetGotoPosition", isAny)},
        {"motion-absolute", "does not go to a position",
         [](Model &model, Behaviour & /*behaviour*/) { model.obeysAbsolutes = false; }},
        {"motion-delta", "makes no steps", [](Model &model, Behaviour & /*behaviour*/) { model.obeysDeltas = false; }},
        {"motion-continuous", "moves in the other direction",
         [](Model &model, Behaviour & /*behaviour*/) { model.reverses = true; }},
        {"motion-stop", "does not stop", [](Model &model, Behaviour & /*behaviour*/) { model.obeysStops = false; }},
        {"motion-timeout", "does not end a move with its time-out",
         [](Model &model, Behaviour & /*behaviour*/) { model.obeysTimeouts = false; }},
        {"relay", "does not switch relays", ignores("outputControl")},
        {"lens-auto", "does not switch lens features", ignores("systemLensFeatureControl")},
        {"preset-store", "refuses to store a preset", refuses("presetStorePosition", isAny)},
        {"restart", "refuses to restart", refuses("rebootDevice", isAny)},
    };
}

} // namespace wrong
