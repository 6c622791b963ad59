// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <array>
#include <functional>
#include <thread>

#include <fmt/format.h>

#include "axis_rules.h"
#include "check/interruption.h"
#include "definitions.h"
#include "error_status.h"
#include "families.h"
#include "object_oids.h"

namespace ptzctl::check {

namespace {

constexpr unsigned char kOn = 0x80;
constexpr int kRestoreAttempts = 3;
constexpr std::chrono::seconds kRestartTime{120};
constexpr std::chrono::seconds kSignTime{5}; ///< after which a restart should show
constexpr std::chrono::milliseconds kInterval{200};
constexpr const char *kUpTime = ".1.3.6.1.2.1.1.3.0"; ///< sysUpTime

/** Octets of a command that switches one thing. */
std::string switchOctets(unsigned int which, bool on) {
    return {static_cast<char>(which), static_cast<char>(on ? kOn : 0)};
}

/** Things that two octets switch and one octet reports. */
struct SwitchObjects {
    const char *control; ///< OID
    const char *status;  ///< OID
};

constexpr SwitchObjects kRelays = {oids::outputControl, oids::outputStatus};
constexpr SwitchObjects kFeatures = {oids::systemLensFeatureControl, oids::systemLensFeatureStatus};

/** One of them. */
struct Switch {
    std::string name;
    unsigned int number; ///< first octet of the command
    unsigned int bit;    ///< of the status
};

unsigned int statusOf(Context &context, const SwitchObjects &switches) {
    const Value value = context.get(switches.status);
    if (!value.present() || value.varbind.octets.empty()) {
        throw Undecided("the status cannot be read");
    }
    return static_cast<unsigned char>(value.varbind.octets.front());
}

/** SwitchObjects back at the end of its life, also after an interruption. */
class SwitchGuard {
public:
    SwitchGuard(Context &context, const SwitchObjects &switches, const Switch &one, bool before)
        : context_(context), varbind_(snmp::octetString(switches.control, switchOctets(one.number, before))) {}
    ~SwitchGuard() {
        try {
            Request request;
            request.verb = Verb::Set;
            request.varbinds = {varbind_};
            const Exchange &exchange = context_.sendAnyway(request, kRestoreAttempts);
            if (!exchange.valid() || exchange.response->error != 0) {
                context_.moveNotes().troubles.push_back(describe(request) + ": " + describeResponse(exchange));
            }
        } catch (const std::exception &) {
            return; // no memory for a request
        }
    }
    SwitchGuard(const SwitchGuard &) = delete;
    SwitchGuard &operator=(const SwitchGuard &) = delete;

private:
    Context &context_;
    snmp::Varbind varbind_;
};

/** SwitchObjects one thing to the other state and back. */
Detail judgeSwitch(Context &context, const SwitchObjects &switches, const Switch &one) {
    const bool before = (statusOf(context, switches) & one.bit) != 0;
    const SwitchGuard guard(context, switches, one, before);
    for (const bool on : {!before, before}) {
        const Exchange &exchange = context.set({snmp::octetString(switches.control, switchOctets(one.number, on))});
        const char *const state = on ? "on" : "off";
        if (!exchange.valid()) {
            return {one.name, Result::Error, describeResponse(exchange)};
        }
        if (exchange.response->error != 0) {
            return {one.name, Result::Fail,
                    fmt::format("{} was refused with {}", state, snmp::describeError(exchange.response->error).name)};
        }
        if (((statusOf(context, switches) & one.bit) != 0) != on) {
            return {one.name, Result::Fail, fmt::format("{} was accepted, but the status does not show it", state)};
        }
    }
    return {one.name, Result::Pass, "switched and switched back"};
}

Finding judgeSwitches(Context &context, const SwitchObjects &switches, const std::vector<Switch> &list) {
    if (!context.value(switches.control).present()) {
        return {Result::NotEquipped, "absent", {}};
    }
    Details details;
    for (const Switch &one : list) {
        details.push_back(judgeSwitch(context, switches, one));
    }
    return summarize(std::move(details));
}

Finding judgeRelays(Context &context) {
    constexpr unsigned int kMost = 8;
    std::vector<Switch> list;
    for (unsigned int number = 1; number <= kMost; ++number) {
        // Without a table of the relays, a camera with the object has one at least.
        if (number == 1 || context.value(oids::row(oids::relayStatesNumber, number)).present()) {
            list.push_back({fmt::format("relay {}", number), number, 1U << (number - 1)});
        }
    }
    return judgeSwitches(context, kRelays, list);
}

Finding judgeFeatures(Context &context) {
    std::vector<Switch> list;
    for (const ptz::Axis &axis : ptz::axes()) {
        if (axis.automatic != 0 && context.value(axis.positionOid).present()) {
            list.push_back({std::string("automatic ") + axis.name, axis.automatic, axis.automatic});
        }
    }
    return judgeSwitches(context, kFeatures, list);
}

/** Asks something again and again. @return whether it became true in time @throws Ended after an interruption */
bool becomes(std::chrono::seconds time, const std::function<bool()> &condition) {
    const auto deadline = std::chrono::steady_clock::now() + time;
    while (!condition()) {
        if (interrupted()) {
            throw Ended("interrupted");
        }
        if (std::chrono::steady_clock::now() >= deadline) {
            return false;
        }
        std::this_thread::sleep_for(kInterval);
    }
    return true;
}

/** Objects by which a restart shows: they need the camera's services, or count the time since the agent's start. */
class RestartSigns {
public:
    explicit RestartSigns(Context &context) : context_(context) {
        for (const char *oid : {oids::temperature, oids::power, oids::inputStatus, oids::outputStatus, kUpTime}) {
            if (context.value(oid).present()) {
                request_.varbinds.push_back(getRequest({oid}).varbinds[0]);
            }
        }
        request_.mayStaySilent = true;
        upTime_ = upTimeIn(read());
    }

    /** Tests for a camera without an answer, with an error, or with an agent that has started again. */
    bool show() {
        const Exchange &exchange = read();
        return !isWhole(exchange) || upTimeIn(exchange) < upTime_;
    }

    /** Tests for a camera that answers all of them. */
    bool areOver() {
        return isWhole(read());
    }

private:
    const Exchange &read() {
        return context_.sendAnyway(request_, 1);
    }

    static bool isWhole(const Exchange &exchange) {
        return exchange.valid() && exchange.response->error == 0 &&
               std::all_of(exchange.response->varbinds.begin(), exchange.response->varbinds.end(),
                           [](const snmp::Varbind &varbind) { return snmp::hasValue(varbind.type); });
    }

    static std::int64_t upTimeIn(const Exchange &exchange) {
        return isWhole(exchange) && !exchange.response->varbinds.empty() &&
                       exchange.response->varbinds.back().oid == kUpTime
                   ? exchange.response->varbinds.back().number
                   : 0;
    }

    Context &context_;
    Request request_ = getRequest({});
    std::int64_t upTime_ = 0; ///< hundredths of a second; 0 if it is not known
};

Finding judgeRestart(Context &context) {
    if (!context.value(oids::rebootDevice).present()) {
        return {Result::NotEquipped, "absent", {}};
    }
    RestartSigns signs(context);
    Request request;
    request.verb = Verb::Set;
    request.varbinds = {snmp::integer(oids::rebootDevice, 1)};
    request.mayStaySilent = true;
    const Exchange &exchange = context.send(request);
    if (exchange.valid() && exchange.response->error != 0) {
        return {Result::Fail, "refused with " + snmp::describeError(exchange.response->error).name, {}};
    }
    if (!becomes(kSignTime, [&] { return signs.show(); })) {
        return {Result::Pass, "accepted; the camera answers all the time, so a restart does not show", {}};
    }
    return becomes(kRestartTime, [&] { return signs.areOver(); })
               ? Finding{Result::Pass, "accepted; the camera went away and answers again", {}}
               : Finding{Result::Fail, fmt::format("does not answer as before after {} s", kRestartTime.count()), {}};
}

} // namespace

std::vector<Rule> disruptiveRules() {
    const auto rule = [](const char *name, const char *object, const char *expectation, const char *source,
                         std::function<Finding(Context &)> judge) {
        return Rule{name, Level::Disruptive, object, expectation, source, std::move(judge)};
    };
    return {
        rule("relay", "outputControl, outputStatus", "each relay switches, the status shows it, and it switches back",
             "NTCIP 1205, cctvOutput (1206.4.2.7.8)", judgeRelays),
        rule("lens-auto", "systemLensFeatureControl, systemLensFeatureStatus",
             "automatic focus and iris switch, the status shows it, and they switch back", kLensSource, judgeFeatures),
        rule("preset-store", "presetStorePosition",
             "the camera stores its position under the number of --preset and answers it", kPresetSource,
             [](Context &context) { return judgePreset(context, oids::presetStorePosition); }),
        rule("restart", "rebootDevice", "the camera takes the command to restart and answers again",
             "vendor's MIB, optional", judgeRestart),
    };
}

} // namespace ptzctl::check
