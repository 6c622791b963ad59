// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Fuzzer of responses to the client: their decoding, the checks of varbinds, and the texts made of values.
 *
 * An input is a sequence of responses, each for the next request of the client; without any more, there is no answer.
 * An octet chooses the kind of a response:
 *   0  a message as octets, their number in an octet in front of them; its request-id does not matter
 *   1  the requested OIDs, each with a value: a type, a number and octets
 *   2  as 1, with an error status and an error index in front
 *   3  one OID below the requested one, by a number, and a value
 */
#include <algorithm>
#include <array>
#include <cstdint>

#include "camera_requests.h"
#include "failure.h"
#include "finding.h"
#include "format_value.h"
#include "input.h"
#include "netsnmp_convert.h"
#include "object_oids.h"
#include "object_table.h"
#include "request.h"

namespace {

using snmp::Response;
using snmp::Varbind;

[[noreturn]] void throwNoAnswer() {
    throw snmp::Failure(snmp::Cause::NoAnswer, "no answer");
}

/** Decodes a message as the library does for a session. */
Response decode(std::string message) {
    std::array<u_char, 256> community{};
    std::size_t communitySize = community.size();
    std::size_t left = message.size();
    long version = 0;
    u_char *const body = snmp_comstr_parse(reinterpret_cast<u_char *>(message.data()), &left, community.data(),
                                           &communitySize, &version);
    const snmp::PduPointer pdu(snmp_pdu_create(0));
    if (body == nullptr || !pdu || snmp_pdu_parse(pdu.get(), body, &left) != 0) {
        throwNoAnswer();
    }
    return {pdu->errstat, pdu->errindex, snmp::varbindsOf(*pdu)};
}

/** Gives a varbind a value. */
Varbind withValue(fuzz::Input &input, const std::string &oid) {
    Varbind varbind = {oid, static_cast<snmp::Type>(input.octet()), 0, ""};
    varbind.number = input.integer();
    varbind.octets = input.octets();
    if (varbind.type == snmp::Type::Oid) {
        varbind.octets = ".1.3";
    }
    return varbind;
}

/** A camera with the responses of an input. */
class Camera : public snmp::Requester {
public:
    explicit Camera(fuzz::Input &input) : input_(input) {}

    Response exchange(snmp::Operation /*operation*/, const std::vector<Varbind> &varbinds,
                      const snmp::Patience & /*patience*/) override {
        constexpr int kMostRequests = 1000;
        if (++requests_ > kMostRequests) {
            fuzz::reportFinding("the client does not stop to ask");
        }
        if (input_.isEmpty()) {
            throwNoAnswer();
        }
        constexpr std::size_t kKinds = 4;
        const std::size_t kind = input_.choice(kKinds);
        if (kind == 0) {
            return decode(input_.octets());
        }
        Response response;
        if (kind == 2) {
            response.error = static_cast<long>(input_.integer());
            response.errorIndex = static_cast<long>(input_.integer());
        }
        if (kind == 3) {
            response.varbinds.push_back(withValue(input_, varbinds.front().oid + "." + std::to_string(input_.octet())));
            return response;
        }
        for (const Varbind &varbind : varbinds) {
            response.varbinds.push_back(withValue(input_, varbind.oid));
        }
        return response;
    }

    snmp::WriteResponse write(const std::vector<Varbind> & /*read*/, const std::vector<Varbind> &written) override {
        return {std::nullopt, exchange(snmp::Operation::Set, written, snmp::kWritePatience)};
    }

private:
    fuzz::Input &input_;
    int requests_ = 0;
};

/** Tests that a text can be printed. Degrees are the only characters beyond ASCII that the client writes. */
void require(const std::string &text, const std::string &what) {
    constexpr const char *kDegree = "\xC2\xB0";
    std::string rest = text;
    for (std::size_t at = rest.find(kDegree); at != std::string::npos; at = rest.find(kDegree)) {
        rest.erase(at, 2);
    }
    if (!std::all_of(rest.begin(), rest.end(), [](char octet) { return octet >= ' ' && octet <= '~'; })) {
        fuzz::reportFinding("not printable: " + what);
    }
}

/** Makes the texts of a reading. JSON without valid UTF-8 throws. */
void show(const ptz::Reading &reading) {
    if (!reading.ok()) {
        require(reading.problem, "the problem of " + reading.instance.name);
        return;
    }
    for (const ptz::ByteOrder order : {ptz::ByteOrder::LowFirst, ptz::ByteOrder::HighFirst}) {
        require(ptz::formatValue(reading.instance, reading.value, order), reading.instance.name);
        require(ptz::valueJson(reading.instance, reading.value, order).dump(), "the JSON of " + reading.instance.name);
    }
}

void show(const std::vector<ptz::Reading> &readings) {
    for (const ptz::Reading &reading : readings) {
        show(reading);
    }
}

std::vector<ptz::Instance> everyInstance() {
    std::vector<ptz::Instance> instances = {ptz::instanceAt(oids::sysDescr), ptz::instanceAt(oids::sysUpTime)};
    for (const ptz::Object &object : ptz::objects()) {
        instances.push_back(ptz::instanceNamed(object.name));
    }
    return instances;
}

/** Runs a command, which only a failure with a printable text may end. */
template <typename Command>
void run(const Command &command) {
    try {
        command();
    } catch (const snmp::Failure &failure) {
        require(failure.what(), "a failure");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static const std::vector<ptz::Instance> all = everyInstance();
    fuzz::Input input(data, size);
    Camera camera(input);
    switch (input.choice(3)) {
    case 0:
        run([&] { show(ptz::readAll(camera, all)); });
        break;
    case 1:
        run([&] { show(ptz::readColumn(camera, oids::alarmStatesState)); });
        break;
    default:
        run([&] {
            const ptz::Assignment assignment = ptz::assignNumber(ptz::instanceAt(oids::timeoutPan), 5);
            show(ptz::writeAll(camera, {assignment}, {false, 1}).answered);
        });
    }
    return 0;
}
