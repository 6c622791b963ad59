// SPDX-License-Identifier: Apache-2.0
#include "fault_families.h"
#include "fault_parts.h"
#include "netsnmp_types.h"
#include "object_oids.h"
#include "oid_text.h"

namespace wrong {

using snmp::Type;
using snmp::Varbind;

std::vector<Fault> readFaults() {
    return {
        {"walk-order", "goes back at the end of the positions", follows([](const std::string &after, Varbind &value) {
             if (after == oids::systemLensEquipped) {
                 value = octets(std::string(4, '\0'));
                 value.oid = oids::positionPan;
             }
         })},
        {"walk-end", "ends a subtree with genErr", distorts([](const Request &request, Reply &reply) {
             if (request.command == Command::GetNext && request.varbinds[0].oid == oids::outputControl) {
                 fail(request, reply, SNMP_ERR_GENERR, 1);
             }
         })},
        {"walk-view-end", "ends its view with genErr", distorts([](const Request &request, Reply &reply) {
             if (request.command == Command::GetNext && request.varbinds[0].oid.rfind(".2.", 0) == 0) {
                 fail(request, reply, SNMP_ERR_GENERR, 1);
             }
         })},
        {"walk-complete", "leaves out rangeFocusLimit",
         [](Model &model, Behaviour &behaviour) {
             behaviour.follows = [&model](const std::string & /*after*/, Varbind &value) {
                 if (value.oid == oids::rangeFocusLimit) {
                     value = model.named("rangeIrisLimit").read();
                     value.oid = oids::rangeIrisLimit;
                 }
             };
         }},
        {"walk-values", "answers GETNEXT with another value",
         follows([](const std::string & /*after*/, Varbind &value) {
             value.number = value.oid == oids::rangeFocusLimit ? 1 : value.number;
         })},
        {"bulk-values", "answers GETBULK with another value", distorts([](const Request &request, Reply &reply) {
             for (Varbind &value : reply.varbinds) {
                 const bool isWrong = request.command == Command::GetBulk && value.oid == oids::rangeFocusLimit;
                 value.number = isWrong ? 1 : value.number;
             }
         })},
        {"bulk-mixed", "leaves out the non-repeaters", distorts([](const Request &request, Reply &reply) {
             if (request.command == Command::GetBulk && request.nonRepeaters > 0 && reply.varbinds.size() > 1) {
                 reply.varbinds.erase(reply.varbinds.begin());
             }
         })},
        {"bulk-limits", "refuses a GETBULK with many repetitions", distorts([](const Request &request, Reply &reply) {
             if (isUnusual(request)) {
                 fail(request, reply, SNMP_ERR_GENERR, 1);
             }
         })},
        {"get-many", "refuses a GET of many objects", distorts([](const Request &request, Reply &reply) {
             if (request.command == Command::Get && request.varbinds.size() > 4) {
                 fail(request, reply, SNMP_ERR_GENERR, 1);
             }
         })},
        {"get-missing", "refuses a GET for one missing object", distorts([](const Request &request, Reply &reply) {
             const bool isMixed = request.command == Command::Get && request.varbinds.size() == 3;
             if (isMixed && !snmp::hasValue(reply.varbinds[1].type)) {
                 fail(request, reply, SNMP_ERR_GENERR, 2);
             }
         })},
        {"wrong-instance", "has a second instance of rangeMaximumPreset",
         distorts([](const Request &request, Reply &reply) {
             const std::string wrong = std::string(oids::registered::rangeMaximumPreset) + ".1";
             if (request.command == Command::Get && request.varbinds[0].oid == wrong) {
                 reply.varbinds[0] = snmp::integer(wrong, 1);
             }
         })},
        {"wrong-row", "has a row 0", distorts([](const Request &request, Reply &reply) {
             const std::string wrong = std::string(oids::alarmStatesState) + ".0";
             if (request.command == Command::Get && request.varbinds[0].oid == wrong) {
                 reply.varbinds[0] = snmp::integer(wrong, 0);
             }
         })},
        {"stable-values", "changes rangeZoomLimit at each read",
         [](Model &model, Behaviour & /*behaviour*/) {
             model.named("rangeZoomLimit").read = [count = std::make_shared<int>(0)] { return number(++*count); };
         }},
        {"latency", "loses some requests",
         [](Model & /*model*/, Behaviour &behaviour) {
             behaviour.drops = [count = std::make_shared<int>(0),
                                last = std::make_shared<long>(0)](const Request &request) {
                 const bool isWatched = request.command == Command::Get && request.varbinds.size() == 1 &&
                                        request.varbinds[0].oid == oids::maxModules;
                 const bool isRepeated = request.id == *last;
                 *last = request.id;
                 *count += isWatched ? 1 : 0;
                 return isWatched && !isRepeated && *count > 10 && *count % 3 == 0;
             };
         }},
        {"uptime", "counts the time backwards",
         [](Model &model, Behaviour & /*behaviour*/) {
             model.named("sysUpTime").read = [time = std::make_shared<std::int64_t>(100000)] {
                 return Varbind{"", Type::TimeTicks, --*time, ""};
             };
         }},
    };
}

std::vector<Fault> responseFaults() {
    return {
        {"response-arrives", "does not answer an unusual request",
         [](Model & /*model*/, Behaviour &behaviour) { behaviour.drops = isUnusual; }},
        {"response-format", "cuts a message",
         [](Model & /*model*/, Behaviour &behaviour) {
             behaviour.mangle = [](const Request &request, std::string &octets) {
                 octets.resize(isUnusual(request) ? octets.size() / 2 : octets.size());
             };
         }},
        {"response-id", "answers with another request ID", distortsUnusual([](Reply &reply) { ++reply.id; })},
        {"response-single", "answers twice",
         [](Model & /*model*/, Behaviour &behaviour) {
             behaviour.copies = [](const Request &request) { return isUnusual(request) ? 2 : 1; };
         }},
        {"response-kind", "answers with a request",
         [](Model & /*model*/, Behaviour &behaviour) {
             behaviour.mangle = [](const Request &request, std::string &octets) {
                 const std::size_t tag = octets.find('\xA2');
                 octets[tag] = isUnusual(request) ? '\xA0' : octets[tag];
             };
         }},
        {"response-count", "leaves out a varbind",
         distortsUnknown(Command::Get, [](Reply &reply) { reply.varbinds.clear(); })},
        {"response-oids", "answers another OID",
         distortsUnknown(Command::Get, [](Reply &reply) { reply.varbinds[0].oid += ".1"; })},
        {"response-values", "answers GET with endOfMibView",
         distortsUnknown(Command::Get, [](Reply &reply) { reply.varbinds[0].type = Type::EndOfMibView; })},
        {"error-status", "answers with an unknown error status", distorts([](const Request &request, Reply &reply) {
             if (isUnusual(request)) {
                 fail(request, reply, 77, 1);
             }
         })},
        {"error-index", "names a varbind that is not there", distorts([](const Request &request, Reply &reply) {
             if (isUnusual(request)) {
                 fail(request, reply, SNMP_ERR_GENERR, 9);
             }
         })},
    };
}

} // namespace wrong
