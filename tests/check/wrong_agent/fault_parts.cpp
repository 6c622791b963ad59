// SPDX-License-Identifier: Apache-2.0
#include "fault_parts.h"

#include <memory>
#include <utility>

#include "object_oids.h"

namespace wrong {

using snmp::Type;
using snmp::Varbind;

namespace {

constexpr long kUnusualRepetitions = 1000;

} // namespace

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

} // namespace wrong
