// SPDX-License-Identifier: Apache-2.0
#include "scripted_camera.h"

#include <algorithm>

#include <gtest/gtest.h>

#include "error_status.h"
#include "oid_text.h"

namespace scripted {

using snmp::Operation;
using snmp::Response;
using snmp::Varbind;

namespace {

std::string word(Operation operation, const snmp::Patience &patience) {
    const int usual = operation == Operation::Set ? 1 : 2;
    const std::string attempts = patience.attempts != usual ? std::to_string(patience.attempts) + "x " : "";
    return attempts + (operation == Operation::Get ? "get" : operation == Operation::Set ? "set" : "next");
}

/** Finds the error of the first varbind that has one. @return no error status without one */
Response errorAmong(const std::map<std::string, long> &errors, const std::vector<Varbind> &varbinds) {
    const auto failing = std::find_if(varbinds.begin(), varbinds.end(),
                                      [&](const Varbind &varbind) { return errors.count(varbind.oid) != 0; });
    if (failing == varbinds.end()) {
        return {};
    }
    const long error = errors.at(failing->oid);
    if (error == snmp::kTooBig) {
        return {varbinds.size() > 1 ? error : 0, 0, {}};
    }
    return {error, failing - varbinds.begin() + 1, varbinds};
}

Varbind initialValue(const ptz::Object &object, const std::string &oid) {
    switch (object.syntax.kind) {
    case ptz::Kind::Integer:
        return snmp::integer(oid, 0);
    case ptz::Kind::Gauge32:
        return {oid, snmp::Type::Gauge32, 0, ""};
    default:
        return snmp::octetString(oid, std::string(static_cast<std::size_t>(object.syntax.lowest), '\0'));
    }
}

} // namespace

std::string id(const std::string &name) {
    return ptz::instanceNamed(name).oid;
}

Camera::Camera() {
    for (const ptz::Object &object : ptz::objects()) {
        store(initialValue(object, id(object.name)));
    }
}

void Camera::store(const Varbind &value) {
    values_[snmp::parseOid(value.oid)] = value;
}

void Camera::put(const std::string &name, std::int64_t number) {
    const bool isGauge = ptz::instanceNamed(name).object->syntax.kind == ptz::Kind::Gauge32;
    store({id(name), isGauge ? snmp::Type::Gauge32 : snmp::Type::Integer, number, ""});
}

void Camera::put(const std::string &name, const std::string &octets) {
    store(snmp::octetString(id(name), octets));
}

void Camera::remove(const std::string &name) {
    values_.erase(snmp::parseOid(id(name)));
}

void Camera::failGet(const std::string &name, long error) {
    getErrors_[id(name)] = error;
}

void Camera::failSet(const std::string &name, long error) {
    setErrors_[id(name)] = error;
}

Response Camera::get(const std::vector<Varbind> &varbinds) const {
    Response response = errorAmong(getErrors_, varbinds);
    if (response.error != 0) {
        return response;
    }
    for (const Varbind &varbind : varbinds) {
        const auto found = values_.find(snmp::parseOid(varbind.oid));
        response.varbinds.push_back(found != values_.end() ? found->second
                                                           : Varbind{varbind.oid, snmp::Type::NoSuchObject, 0, ""});
    }
    return response;
}

Response Camera::next(const Varbind &varbind) const {
    const auto found = values_.upper_bound(snmp::parseOid(varbind.oid));
    if (found != values_.end() && getErrors_.count(found->second.oid) != 0) {
        return {getErrors_.at(found->second.oid), 1, {varbind}};
    }
    return {0, 0, {found != values_.end() ? found->second : Varbind{varbind.oid, snmp::Type::EndOfMibView, 0, ""}}};
}

Response Camera::set(const std::vector<Varbind> &varbinds) {
    Response response = errorAmong(setErrors_, varbinds);
    if (response.error != 0) {
        return response;
    }
    const auto missing = std::find_if(varbinds.begin(), varbinds.end(), [&](const Varbind &value) {
        return values_.count(snmp::parseOid(value.oid)) == 0;
    });
    if (missing != varbinds.end()) {
        return {kNotWritable, missing - varbinds.begin() + 1, varbinds};
    }
    for (const Varbind &value : varbinds) {
        // This product's cameras keep the number of a preset as an octet.
        const ptz::Object *const object = ptz::instanceAt(value.oid).object;
        store(object != nullptr && object->syntax.setAsInteger
                  ? snmp::octetString(value.oid, std::string(1, static_cast<char>(value.number)))
                  : value);
    }
    response.varbinds = varbinds;
    return response;
}

Response Camera::exchange(Operation operation, const std::vector<Varbind> &varbinds, const snmp::Patience &patience) {
    std::string entry = word(operation, patience);
    for (const Varbind &varbind : varbinds) {
        entry += " " + ptz::instanceAt(varbind.oid).name +
                 (operation == Operation::Set ? "=" + snmp::valueText(varbind) : "");
    }
    log.push_back(entry);
    if (operation != Operation::Set && !answersReads) {
        throw snmp::Failure(snmp::Cause::NoAnswer, "no answer");
    }
    Response response = operation == Operation::Get   ? get(varbinds)
                        : operation == Operation::Set ? set(varbinds)
                                                      : next(varbinds.front());
    if (spoil) {
        spoil(operation, response);
    }
    return response;
}

snmp::WriteResponse Camera::write(const std::vector<Varbind> &read, const std::vector<Varbind> &written) {
    snmp::WriteResponse result;
    if (!read.empty()) {
        try {
            result.before = exchange(Operation::Get, read, snmp::kWritePatience);
        } catch (const snmp::Failure &) {
            result.before.reset();
        }
    }
    result.written = exchange(Operation::Set, written, snmp::kWritePatience);
    return result;
}

ptzctl::Report report(Camera &camera, const ptzctl::Action &action, const ptzctl::Settings &settings) {
    ptzctl::Report result;
    ptzctl::Context context{camera, settings, result};
    action(context);
    return result;
}

std::string failure(Camera &camera, const ptzctl::Action &action, snmp::Cause cause, const ptzctl::Settings &settings) {
    try {
        report(camera, action, settings);
    } catch (const snmp::Failure &failed) {
        EXPECT_EQ(failed.cause(), cause) << failed.what();
        return failed.what();
    }
    ADD_FAILURE() << "the command did not fail";
    return "";
}

} // namespace scripted
