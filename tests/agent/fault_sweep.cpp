// SPDX-License-Identifier: Apache-2.0
#include "fault_sweep.h"

#include <algorithm>
#include <iterator>

#include "eventually.h"
#include "object_oids.h"

namespace faults {

using namespace harness;
using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

/** A request that no call holds up is answered at once; the rest is for a machine that is busy with other tests. */
constexpr milliseconds kAtOnce = seconds(2);

Services servicesOf(const Camera &camera) {
    const nlohmann::json state = nlohmann::json::parse(camera.control("state").output);
    Services services;
    for (const auto &[name, service] : state.at("services").items()) {
        services.insert(name);
    }
    return services;
}

/** Returns the answer with 0 in the bits of failed calls. */
std::string withoutBits(const Varbind &answered, const std::string &asEver, const std::vector<Call> &failed) {
    unsigned lost = 0;
    for (const Call &call : failed) {
        lost |= call.lostBits;
    }
    if (lost == 0) {
        return asEver;
    }
    if (answered.type != Type::Octets) {
        return std::to_string(std::stoul(asEver) & ~lost);
    }
    // Objects with bits have one octet, which reads as 0xHH in the answers that they give here.
    const auto value = static_cast<char>(std::stoul(asEver, nullptr, 16) & ~lost);
    return recordedValue(octetString(answered.oid, {value}));
}

} // namespace

std::vector<Call> Fault::struck(const std::vector<Call> &calls) const {
    std::vector<Call> result;
    std::copy_if(calls.begin(), calls.end(), std::back_inserter(result), [this](const Call &call) {
        return services.count(call.service) != 0 && (operation.empty() || operation == call.operation);
    });
    return result;
}

FaultSweep::FaultSweep(const std::string &camera, const AgentOptions &agent)
    : CameraAgent(camera, agent), services_(servicesOf(camera_)) {
    learn();
}

const Services &FaultSweep::services() const {
    return services_;
}

Result FaultSweep::ask(const Request &request) {
    return request.isGet() ? manager_.get(request.varbind.oid) : manager_.set({request.varbind});
}

std::size_t FaultSweep::errorsLogged(std::size_t start) const {
    return agent_.moduleLog().count(" SNMP error ", start);
}

void FaultSweep::learn(Request &request) {
    if (request.onlyFailed) {
        return;
    }
    const std::size_t start = agent_.moduleLog().size();
    const Result result = ask(request);
    EXPECT_TRUE(result.answered) << request.varbind;
    request.error = result.error;
    request.errorsLogged = errorsLogged(start);
    if (request.isGet() || !request.held.empty() || !request.calls.empty()) {
        EXPECT_TRUE(result.ok()) << request.varbind << ": " << result;
        EXPECT_EQ(request.errorsLogged, 0U) << request.varbind;
        request.answer = recordedValue(result.single());
    }
}

void FaultSweep::learn() {
    const std::vector<Varbind> shown = walk();
    reads_ = reads(shown, services_);
    writes_ = writes(shown, services_);
    for (std::vector<Request> *requests : {&writes_, &reads_}) {
        for (Request &request : *requests) {
            learn(request);
        }
    }
}

void FaultSweep::expectAnswer(const Request &request, const std::vector<Call> &failed, const Result &result) {
    if (!failed.empty() && request.genErr) {
        EXPECT_EQ(result.error, ErrorStatus::GenErr) << result;
        return;
    }
    EXPECT_EQ(result.error, request.error) << result;
    if (!result.ok()) {
        return;
    }
    if (request.isGet()) {
        EXPECT_EQ(recordedValue(result.single()), withoutBits(result.single(), request.answer, failed));
    } else if (!request.held.empty()) {
        EXPECT_EQ(get(request.varbind.oid), request.held);
    }
}

void FaultSweep::expectLog(const Request &request, const std::vector<Call> &failed, std::size_t start) const {
    const LogFile log = agent_.moduleLog();
    const auto told = [](const Call &call) { return !call.log.empty(); };
    const auto inLog = [&](const Call &call) { return told(call) && log.count(call.log, start) > 0; };
    if (std::none_of(failed.begin(), failed.end(), told)) {
        EXPECT_EQ(errorsLogged(start), request.errorsLogged);
    } else if (std::any_of(failed.begin(), failed.end(), [&](const Call &call) { return told(call) && call.always; })) {
        EXPECT_TRUE(std::any_of(failed.begin(), failed.end(), inLog)) << "the failure is not in the log";
    }
}

void FaultSweep::send(const Request &request, const Fault &fault) {
    const std::vector<Call> struck = fault.struck(request.calls);
    const std::vector<Call> failed = fault.fails ? struck : std::vector<Call>();
    if (request.onlyFailed && (failed.empty() || fault.perCall.count() != 0)) {
        return; // a call that is answered late is carried out all the same
    }
    SCOPED_TRACE(testing::Message() << (request.isGet() ? "GET " : "SET ") << request.varbind);
    const std::size_t logStart = agent_.moduleLog().size();
    manager_.setTimeout(patient(kAtOnce) + fault.perCall * struck.size());
    const auto start = std::chrono::steady_clock::now();
    const Result result = ask(request);
    ASSERT_TRUE(result.answered) << "not in the time that its calls take";
    const auto duration = std::chrono::duration_cast<milliseconds>(std::chrono::steady_clock::now() - start);
    if (std::any_of(struck.begin(), struck.end(), [](const Call &call) { return call.always; })) {
        expectDuration(request, fault, duration);
    } else if (struck.empty() && result.ok()) {
        for (const Call &call : request.calls) {
            heldSince_.erase(call.service);
        }
    }
    expectAnswer(request, failed, result);
    expectLog(request, failed, logStart);
}

void FaultSweep::sweep(const Fault &fault) {
    for (const std::vector<Request> *requests : {&reads_, &writes_}) {
        for (const Request &request : *requests) {
            send(request, fault);
        }
    }
}

void FaultSweep::recover() {
    for (const Request &request : writes_) {
        send(request, {});
    }
    awaitEndOfHolds();
    for (const Request &request : reads_) {
        send(request, {});
    }
}

void FaultSweep::expectDuration(const Request &request, const Fault &fault, milliseconds duration) {
    constexpr seconds kHold(10);
    constexpr milliseconds kSlow = seconds(1); // the shortest failure that causes a hold
    constexpr milliseconds kMargin = seconds(1);
    if (!request.isGet() || !fault.fails || fault.perCall < kSlow) {
        EXPECT_GE(duration.count(), fault.atLeast.count()) << "the call was not held up";
        return;
    }
    const auto now = std::chrono::steady_clock::now();
    bool allHeld = true;
    bool noneHeld = true;
    for (const Call &call : fault.struck(request.calls)) {
        const auto held = heldSince_.find(call.service);
        allHeld = allHeld && held != heldSince_.end() && now < held->second + kHold - kMargin;
        noneHeld = noneHeld && (held == heldSince_.end() || now - duration > held->second + kHold + kMargin);
        if (duration >= kSlow) {
            heldSince_[call.service] = now;
        }
    }
    if (allHeld) {
        EXPECT_LT(duration.count(), kSlow.count()) << "the service was asked again";
    } else if (noneHeld) {
        EXPECT_GE(duration.count(), fault.atLeast.count()) << "the call was not held up";
    }
}

/** Waits until services that no command of recover() has called are read again. */
void FaultSweep::awaitEndOfHolds() {
    for (const Request &request : reads_) {
        const auto isHeld = [this](const Call &call) { return heldSince_.count(call.service) != 0; };
        if (std::any_of(request.calls.begin(), request.calls.end(), isHeld)) {
            EXPECT_TRUE(eventually(patient(seconds(15)), [&] { return ask(request).ok(); })) << request.varbind;
        }
    }
    heldSince_.clear();
}

void FaultSweep::order(const char *command, const std::string &service, const std::string &operation,
                       const std::string &how) {
    control(command, service, operation, how, "--always");
}

void FaultSweep::forgetRelaySetUp() const {
    if (services_.count("relay") != 0) {
        setField(camera_, "relay/1", "configuration.c1", 0);
        setField(camera_, "relay/2", "configuration.c1", 0);
    }
}

std::string cameraWith(const std::string &service) {
    return service.find("stepper") != std::string::npos ? "stepper" : "dome";
}

} // namespace faults
