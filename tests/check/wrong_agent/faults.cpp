// SPDX-License-Identifier: Apache-2.0
#include "faults.h"

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <utility>

#include "netsnmp_types.h"
#include "object_oids.h"
#include "oid_text.h"

namespace wrong {

using snmp::Type;
using snmp::Varbind;

namespace {

using Install = std::function<void(Model &, Behaviour &)>;
using Accepts = std::function<bool(const Varbind &)>;

constexpr long kUnusualRepetitions = 1000;

// Faults of one object.

Install absent(const char *name) {
    return [name](Model &model, Behaviour & /*behaviour*/) { model.instances.erase(model.numbersOf(name)); };
}

/** Cannot read an object: a GET is genErr, and a walk leaves it out. */
Install unreadable(const char *name) {
    return [name](Model &model, Behaviour &behaviour) {
        const Numbers numbers = model.numbersOf(name);
        model.instances.erase(numbers);
        behaviour.distort = [oid = snmp::oidText(numbers)](const Request &request, Reply &reply) {
            for (std::size_t i = 0; request.command == Command::Get && i < request.varbinds.size(); ++i) {
                if (request.varbinds[i].oid == oid) {
                    reply = {reply.id, SNMP_ERR_GENERR, static_cast<long>(i) + 1, request.varbinds};
                    return;
                }
            }
        };
    };
}

/** Serves an object at the instance 7. */
Install elsewhere(const char *name) {
    return [name](Model &model, Behaviour & /*behaviour*/) {
        Numbers numbers = model.numbersOf(name);
        const Instance instance = model.instances.at(numbers);
        model.instances.erase(numbers);
        numbers.back() = 7;
        model.instances[numbers] = instance;
    };
}

Install answers(const char *name, const Varbind &value) {
    return [=](Model &model, Behaviour & /*behaviour*/) { model.named(name).read = [value] { return value; }; };
}

Install answersBoth(const char *first, const Varbind &value, const char *second, const Varbind &other) {
    return [=](Model &model, Behaviour &behaviour) {
        answers(first, value)(model, behaviour);
        answers(second, other)(model, behaviour);
    };
}

/** Accepts further values of an object without any effect. */
Install accepts(const char *name, const Accepts &isAccepted) {
    return [=](Model &model, Behaviour & /*behaviour*/) {
        Instance &instance = model.named(name);
        instance.isWritable = true;
        instance.check = [check = instance.check, isAccepted](const Varbind &value) -> long {
            if (isAccepted(value)) {
                return SNMP_ERR_NOERROR;
            }
            return check ? check(value) : SNMP_ERR_NOTWRITABLE;
        };
        instance.write = [write = instance.write, isAccepted](const Varbind &value) {
            if (!isAccepted(value)) {
                write(value);
            }
        };
    };
}

/** Refuses some values of an object with genErr. */
Install refuses(const char *name, const Accepts &isRefused) {
    return [=](Model &model, Behaviour & /*behaviour*/) {
        Instance &instance = model.named(name);
        instance.check = [check = instance.check, isRefused](const Varbind &value) -> long {
            return isRefused(value) ? SNMP_ERR_GENERR : check(value);
        };
    };
}

/** Accepts values and does nothing. */
Install ignores(const char *name) {
    return [name](Model &model, Behaviour & /*behaviour*/) { model.named(name).write = [](const Varbind &) {}; };
}

bool hasMode(const Varbind &value, ptz::Mode mode) {
    return value.type == Type::Octets && !value.octets.empty() && value.octets[0] == static_cast<char>(mode);
}

Accepts ofMode(ptz::Mode mode) {
    return [mode](const Varbind &value) { return hasMode(value, mode); };
}

bool isStop(const Varbind &value) {
    return value.octets == std::string(ptz::kCommandSize, '\0');
}

bool isAny(const Varbind & /*value*/) {
    return true;
}

// Faults of requests.

Install distorts(const std::function<void(const Request &, Reply &)> &distort) {
    return [=](Model & /*model*/, Behaviour &behaviour) { behaviour.distort = distort; };
}

Install follows(const std::function<void(const std::string &, Varbind &)> &change) {
    return [=](Model & /*model*/, Behaviour &behaviour) { behaviour.follows = change; };
}

bool isUnusual(const Request &request) {
    return request.command == Command::GetBulk && request.maxRepetitions >= kUnusualRepetitions;
}

/** Distorts the response to a GETBULK with very many repetitions, which one rule sends. */
Install distortsUnusual(const std::function<void(Reply &)> &distort) {
    return distorts([distort](const Request &request, Reply &reply) {
        if (isUnusual(request)) {
            distort(reply);
        }
    });
}

void fail(const Request &request, Reply &reply, long error, long index) {
    reply = {reply.id, error, index, request.varbinds};
}

/** Distorts the response to a GET or SET of one unknown object. */
Install distortsUnknown(Command command, const std::function<void(Reply &)> &distort) {
    const std::string unknown = std::string(oids::kCctvSubtree) + ".255.255.0";
    return distorts([=](const Request &request, Reply &reply) {
        if (request.command == command && request.varbinds.size() == 1 && request.varbinds[0].oid == unknown) {
            distort(reply);
        }
    });
}

Varbind gauge(std::int64_t value) {
    return {"", Type::Gauge32, value, ""};
}

const std::string kLongText(300, 'x');
const char *const kEscape = "\x1B[2J";

std::vector<Fault> objectFaults() {
    std::vector<Fault> list;
    for (const auto &[set, name] :
         std::vector<std::pair<const char *, const char *>>{{"module", "moduleModel"},
                                                            {"preset", "presetStorePosition"},
                                                            {"pan", "rangeMinimumPanStepAngle"},
                                                            {"tilt", "rangeMinimumTiltStepAngle"},
                                                            {"zoom", "rangeZoomLimit"},
                                                            {"focus", "rangeFocusLimit"},
                                                            {"iris", "rangeIrisLimit"},
                                                            {"lens", "systemLensEquipped"},
                                                            {"output", "outputControl"},
                                                            {"identity", "hwVersion"}}) {
        list.push_back({std::string(set) + "-presence", std::string("lacks ") + name, absent(name)});
    }
    for (const auto &[set, name] : std::vector<std::pair<const char *, const char *>>{{"alarm", "alarmStatus"},
                                                                                      {"input", "inputStatus"},
                                                                                      {"temperature", "temperature"},
                                                                                      {"power", "power"},
                                                                                      {"voltage", "voltage"},
                                                                                      {"restart", "rebootDevice"}}) {
        list.push_back({std::string(set) + "-presence", std::string("cannot read ") + name, unreadable(name)});
    }
    struct Group {
        const char *group;
        const char *name;
        Varbind wrongType;
    };
    for (const auto &[group, name, wrongType] : std::vector<Group>{{"module", "moduleModel", number(1)},
                                                                   {"limit", "rangeZoomLimit", gauge(1)},
                                                                   {"timeout", "timeoutIris", gauge(1)},
                                                                   {"preset", "presetStorePosition", octets("12")},
                                                                   {"position", "positionIrisLens", number(0)},
                                                                   {"lens", "systemLensFeatureControl", number(0)},
                                                                   {"io", "alarmStatus", number(0)},
                                                                   {"identity", "hwVersion", number(0)},
                                                                   {"health", "power", gauge(0)}}) {
        list.push_back(
            {std::string(group) + "-instance", std::string("has another instance of ") + name, elsewhere(name)});
        list.push_back(
            {std::string(group) + "-type", std::string("answers another type for ") + name, answers(name, wrongType)});
    }
    const std::vector<std::pair<const char *, std::pair<const char *, Varbind>>> values = {
        {"module-length", {"moduleModel", octets(kLongText)}},
        {"position-length", {"positionIrisLens", octets(std::string(6, '\0'))}},
        {"lens-length", {"systemLensFeatureControl", octets(std::string(3, '\0'))}},
        {"io-length", {"alarmStatus", octets(std::string(2, '\0'))}},
        {"identity-length", {"hwVersion", octets(kLongText)}},
        {"module-range", {"moduleType", number(9)}},
        {"limit-range", {"rangeZoomLimit", number(70000)}},
        {"preset-range", {"presetStorePosition", number(300)}},
        {"health-range", {"power", number(300)}},
        {"module-text", {"moduleModel", octets(kEscape)}},
        {"identity-text", {"hwVersion", octets(kEscape)}},
        {"position-command", {"positionIrisLens", octets({9, 0, 1, 1})}},
    };
    for (const auto &[rule, value] : values) {
        list.push_back(
            {rule, std::string("answers another value for ") + value.first, answers(value.first, value.second)});
    }
    return list;
}

std::vector<Fault> consistencyFaults() {
    return {
        {"pan-limits", "has its left limit to the right of the right one",
         answersBoth("rangePanLeftLimit", number(20000), "rangePanRightLimit", number(10000))},
        {"tilt-limits", "has its upper limit below the lower one",
         answersBoth("rangeTiltUpLimit", number(27000), "rangeTiltDownLimit", number(9000))},
        {"pan-home", "has its home position beyond a limit",
         answersBoth("rangePanRightLimit", number(10000), "rangePanHomePosition", number(20000))},
        {"pan-step", "has a step that is larger than the range",
         answersBoth("rangePanRightLimit", number(10000), "rangeMinimumPanStepAngle", number(20000))},
        {"tilt-step", "has a step that is larger than the range", answers("rangeMinimumTiltStepAngle", number(20000))},
        {"lens-equipped", "uses a feature that it does not have",
         answersBoth("systemLensEquipped", octets("\x40"), "systemLensFeatureStatus", octets("\x80"))},
        {"input-bits", "has a bit without the state of its row", answers("inputStatus", octets("\x01"))},
        {"output-bits", "has a bit without the state of its row", answers("outputStatus", octets("\x02"))},
        {"input-table", "has a cell of another type", answers("alarmStatesKind.2", number(1))},
        {"relay-table", "has a cell out of range", answers("relayStatesState.2", number(300))},
        {"module-rows", "states one module more than it has", answers("maxModules", number(2))},
        {"module-node", "names a node without objects",
         answers("moduleDeviceNode", {"", Type::Oid, 0, ".1.3.6.1.4.1.77777"})},
    };
}

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

} // namespace

const std::vector<Fault> &faults() {
    static const std::vector<Fault> all = [] {
        std::vector<Fault> list;
        for (const auto &family :
             {objectFaults, consistencyFaults, readFaults, writeFaults, moveFaults, responseFaults}) {
            const std::vector<Fault> more = family();
            list.insert(list.end(), more.begin(), more.end());
        }
        return list;
    }();
    return all;
}

const Fault &faultNamed(const std::string &rule) {
    const auto &all = faults();
    const auto found = std::find_if(all.begin(), all.end(), [&](const Fault &fault) { return fault.rule == rule; });
    if (found == all.end()) {
        throw std::invalid_argument("unknown fault '" + rule + "'");
    }
    return *found;
}

} // namespace wrong
