// SPDX-License-Identifier: Apache-2.0
#include "scripted_camera.h"

#include <gtest/gtest.h>

#include "failure.h"
#include "objects.h"

namespace scripted {

using namespace ptzctl;

namespace {

constexpr long kTooBig = 1;

const char *word(Request request) {
    return request == Request::Get ? "get" : request == Request::Set ? "set" : "next";
}

Reply refusal(const std::vector<Variable> &variables, std::size_t place, long error) {
    return {error, static_cast<long>(place) + 1, variables};
}

/** A preset's number becomes an octet, as this product's cameras keep it. */
Variable stored(const Variable &value) {
    const Object *const object = objectAt(value.identifier);
    return object != nullptr && object->writtenAsNumber
               ? octetString(value.identifier, std::string(1, static_cast<char>(value.number)))
               : value;
}

} // namespace

std::string id(const std::string &name) {
    return identifierOf(name);
}

Camera::Camera() {
    for (const Object &object : objects()) {
        Variable value = integer(object.identifier, 0);
        if (object.syntax == Syntax::Gauge) {
            value.type = Type::Gauge32;
        } else if (object.syntax != Syntax::Integer) {
            value = octetString(object.identifier, std::string(object.size, '\0'));
        }
        values_[parseIdentifier(object.identifier)] = value;
    }
}

void Camera::put(const std::string &name, std::int64_t number) {
    Variable value = integer(id(name), number);
    const auto found = values_.find(parseIdentifier(value.identifier));
    value.type = found != values_.end() && found->second.type == Type::Gauge32 ? Type::Gauge32 : Type::Integer;
    values_[parseIdentifier(value.identifier)] = value;
}

void Camera::put(const std::string &name, const std::string &octets) {
    values_[parseIdentifier(id(name))] = octetString(id(name), octets);
}

void Camera::remove(const std::string &name) {
    values_.erase(parseIdentifier(id(name)));
}

void Camera::failGet(const std::string &name, long error) {
    getErrors_[id(name)] = error;
}

void Camera::failSet(const std::string &name, long error) {
    setErrors_[id(name)] = error;
}

Reply Camera::get(const std::vector<Variable> &variables) {
    Reply reply;
    for (std::size_t i = 0; i < variables.size(); ++i) {
        const auto error = getErrors_.find(variables[i].identifier);
        if (error != getErrors_.end() && (error->second != kTooBig || variables.size() > 1)) {
            return error->second == kTooBig ? Reply{kTooBig, 0, {}} : refusal(variables, i, error->second);
        }
        const auto found = values_.find(parseIdentifier(variables[i].identifier));
        reply.variables.push_back(
            found != values_.end() ? found->second : Variable{variables[i].identifier, Type::NoSuchObject, 0, ""});
    }
    return reply;
}

Reply Camera::next(const Variable &variable) {
    const auto found = values_.upper_bound(parseIdentifier(variable.identifier));
    return {0, 0, {found != values_.end() ? found->second : Variable{variable.identifier, Type::EndOfMibView, 0, ""}}};
}

Reply Camera::set(const std::vector<Variable> &variables) {
    for (std::size_t i = 0; i < variables.size(); ++i) {
        const auto error = setErrors_.find(variables[i].identifier);
        if (error != setErrors_.end()) {
            return refusal(variables, i, error->second);
        }
    }
    for (const Variable &value : variables) {
        if (obeys) {
            values_[parseIdentifier(value.identifier)] = stored(value);
        }
    }
    return {0, 0, variables};
}

Reply Camera::exchange(Request request, const std::vector<Variable> &variables) {
    std::string entry = word(request);
    for (const Variable &variable : variables) {
        entry += " " + nameOf(variable.identifier) + (request == Request::Set ? "=" + valueText(variable) : "");
    }
    log.push_back(entry);
    Reply reply = request == Request::Get   ? get(variables)
                  : request == Request::Set ? set(variables)
                                            : next(variables.front());
    if (spoil) {
        spoil(request, reply);
    }
    return reply;
}

Report report(Camera &camera, const Action &action, const Settings &settings) {
    Report result;
    Context context{camera, settings, result};
    action(context);
    return result;
}

std::string failure(Camera &camera, const Action &action, int code) {
    try {
        report(camera, action);
    } catch (const Failure &failed) {
        EXPECT_EQ(static_cast<int>(failed.code()), code) << failed.what();
        return failed.what();
    }
    ADD_FAILURE() << "the command has not failed";
    return "";
}

} // namespace scripted
