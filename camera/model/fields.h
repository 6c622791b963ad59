// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Field records: the single description of a state struct for the parser of camera files, the output of the state, the
 * control command `set` and the reference in the documentation.
 *
 * The key of a record is dotted, such as `pan.softPosition.minimum`. Each dot is a nesting level in JSON. The list of
 * records is flat: the fields of a nested struct have longer keys.
 */
#ifndef QUARNSNMP_CAMERA_FIELDS_H
#define QUARNSNMP_CAMERA_FIELDS_H

#include <functional>
#include <limits>
#include <type_traits>
#include <utility>

#include "values.h"

namespace camera {

/** Field of a state struct. */
template <typename State>
struct Field {
    std::string key;
    std::string expected; ///< description of valid values, such as "an integer from 0 to 255"
    std::function<nlohmann::json(const State &)> get;
    /**
     * Checks and stores a value. On failure, stores nothing and returns an error with a path relative to the field.
     * Empty for a read-only field.
     */
    std::function<std::optional<Problem>(State &, const nlohmann::json &)> set;
};

template <typename State>
using Fields = std::vector<Field<State>>;

/** Makes a field of a member. `parse` converts a JSON value to the member's type, and an invalid one to nothing. */
template <typename State, typename Value, typename Parse>
Field<State> parsedField(std::string key, Value State::*member, std::string expected, Parse parse) {
    auto set = [member, expected, parse](State &state, const nlohmann::json &value) -> std::optional<Problem> {
        const std::optional<Value> parsed = parse(value);
        if (!parsed) {
            return Problem{"", mismatch(expected, value)};
        }
        state.*member = *parsed;
        return std::nullopt;
    };
    return {std::move(key), std::move(expected), [member](const State &state) { return nlohmann::json(state.*member); },
            std::move(set)};
}

/** Makes an integer field. The range includes its limits; the default is the range of the member's type. */
template <typename State, typename Value>
Field<State> integerField(std::string key, Value State::*member,
                          std::common_type_t<Value> lowest = std::numeric_limits<Value>::min(),
                          std::common_type_t<Value> highest = std::numeric_limits<Value>::max()) {
    return parsedField(std::move(key), member, integerExpected(lowest, highest),
                       [lowest, highest](const nlohmann::json &value) -> std::optional<Value> {
                           const std::optional<std::int64_t> number = integerIn(value, lowest, highest);
                           return number ? std::optional<Value>(static_cast<Value>(*number)) : std::nullopt;
                       });
}

/** Makes a read-only field, whose value follows from commands. @param kind  type of the value, as in "an integer" */
template <typename State, typename Get>
Field<State> readOnlyField(std::string key, const std::string &kind, Get get) {
    return {std::move(key), kind + "; read-only", std::move(get), nullptr};
}

/** Makes a boolean field. */
template <typename State>
Field<State> flagField(std::string key, bool State::*member) {
    return parsedField(std::move(key), member, "true or false", [](const nlohmann::json &value) {
        return value.is_boolean() ? std::optional<bool>(value.get<bool>()) : std::nullopt;
    });
}

/** Makes a text field. */
template <typename State>
Field<State> textField(std::string key, std::string State::*member, std::size_t longest = kLongestText) {
    return parsedField(std::move(key), member, "a text of at most " + std::to_string(longest) + " octets",
                       [longest](const nlohmann::json &value) { return textIn(value, longest); });
}

/** Makes a field for a text or null. */
template <typename State>
Field<State> nullableTextField(std::string key, std::optional<std::string> State::*member) {
    std::string expected = "a text of at most " + std::to_string(kLongestText) + " octets or null";
    auto get = [member](const State &state) {
        return (state.*member) ? nlohmann::json(*(state.*member)) : nlohmann::json();
    };
    auto set = [member, expected](State &state, const nlohmann::json &value) -> std::optional<Problem> {
        std::optional<std::string> text = textIn(value, kLongestText);
        if (!text && !value.is_null()) {
            return Problem{"", mismatch(expected, value)};
        }
        state.*member = std::move(text);
        return std::nullopt;
    };
    return {std::move(key), std::move(expected), std::move(get), std::move(set)};
}

/** Returns the values of all fields as one object with dotted keys. */
template <typename State>
nlohmann::json fieldValues(const Fields<State> &fields, const State &state) {
    nlohmann::json values = nlohmann::json::object();
    for (const Field<State> &field : fields) {
        values[field.key] = field.get(state);
    }
    return values;
}

/** Returns the keys of all fields that are not read-only. */
template <typename State>
std::vector<std::string> settableKeys(const Fields<State> &fields) {
    std::vector<std::string> keys;
    for (const Field<State> &field : fields) {
        if (field.set) {
            keys.push_back(field.key);
        }
    }
    return keys;
}

/** Converts an object with dotted keys to nested objects. */
nlohmann::json nested(const nlohmann::json &dotted);

/** Returns the names on the next level below a group of keys; the group "" is the whole struct. */
std::vector<std::string> membersOf(const std::vector<std::string> &keys, const std::string &group);

/** Returns the error for a read-only field. */
Problem readOnly(const std::string &key);

/** Returns the error for an unknown key, with the valid keys of the nearest existing level. */
Problem unknownKey(const std::vector<std::string> &keys, const std::string &key);

/**
 * Stores a value in the field of a key, or an object of values in a group of fields. The group "" is the whole struct.
 * After an error, some of the values may be stored, so callers work on a copy.
 */
template <typename State>
std::optional<Problem> assign(const Fields<State> &fields, const std::string &key, const nlohmann::json &value,
                              State &state) {
    for (const Field<State> &field : fields) {
        if (field.key == key && !field.set) {
            return readOnly(key);
        }
        if (field.key == key) {
            std::optional<Problem> problem = field.set(state, value);
            if (problem) {
                problem->path = joinPath(key, problem->path);
            }
            return problem;
        }
    }
    const std::vector<std::string> members = membersOf(settableKeys(fields), key);
    if (members.empty()) {
        return unknownKey(settableKeys(fields), key);
    }
    if (!value.is_object()) {
        return Problem{key, mismatch("an object with " + listed(members), value)};
    }
    for (const auto &item : value.items()) {
        // A dotted key would be a second form of the same field.
        if (item.key().empty() || item.key().find('.') != std::string::npos) {
            return unknownKey(settableKeys(fields), joinPath(key, item.key()));
        }
        if (std::optional<Problem> problem = assign(fields, joinPath(key, item.key()), item.value(), state)) {
            return problem;
        }
    }
    return std::nullopt;
}

/** Makes a field for a list of at most `longest` structs with their own field records. */
template <typename State, typename Element>
Field<State> listField(std::string key, std::vector<Element> State::*member, const Fields<Element> &elementFields,
                       std::size_t longest) {
    std::string expected = "a list of at most " + std::to_string(longest) + " objects with " +
                           listed(membersOf(settableKeys(elementFields), ""));
    auto get = [member, elementFields](const State &state) {
        nlohmann::json values = nlohmann::json::array();
        for (const Element &element : state.*member) {
            values.push_back(nested(fieldValues(elementFields, element)));
        }
        return values;
    };
    auto set = [member, elementFields, longest, expected](State &state,
                                                          const nlohmann::json &value) -> std::optional<Problem> {
        if (!value.is_array() || value.size() > longest) {
            return Problem{"", mismatch(expected, value)};
        }
        std::vector<Element> elements(value.size());
        for (std::size_t i = 0; i < elements.size(); ++i) {
            if (std::optional<Problem> problem = assign(elementFields, "", value[i], elements[i])) {
                problem->path = joinPath("[" + std::to_string(i) + "]", problem->path);
                return problem;
            }
        }
        state.*member = std::move(elements);
        return std::nullopt;
    };
    return {std::move(key), std::move(expected), std::move(get), std::move(set)};
}

/** Adds the records of a nested struct under a key. */
template <typename State, typename Part>
void addPart(Fields<State> &fields, const std::string &key, Part State::*member, const Fields<Part> &partFields) {
    for (const Field<Part> &field : partFields) {
        fields.push_back({joinPath(key, field.key), field.expected,
                          [member, get = field.get](const State &state) { return get(state.*member); }, nullptr});
        if (field.set) {
            fields.back().set = [member, set = field.set](State &state, const nlohmann::json &value) {
                return set(state.*member, value);
            };
        }
    }
}

/** Adds the records of a base struct. */
template <typename State, typename Base>
void addBase(Fields<State> &fields, const Fields<Base> &baseFields) {
    static_assert(std::is_base_of_v<Base, State>);
    for (const Field<Base> &field : baseFields) {
        fields.push_back({field.key, field.expected, field.get, field.set});
    }
}

/** Checks a field against the values of two other fields. @param limits  their keys, as in "minimum to maximum" */
std::optional<Problem> checkWithin(const std::string &key, std::int64_t value, std::int64_t lowest,
                                   std::int64_t highest, const std::string &limits);

/** Checks a field against the value of another field, its lower limit. @param limit  the key of that field */
std::optional<Problem> checkAtLeast(const std::string &key, std::int64_t value, std::int64_t lowest,
                                    const std::string &limit);

/** Returns the first error of several checks; nothing if all passed. */
std::optional<Problem> firstOf(std::initializer_list<std::optional<Problem>> problems);

} // namespace camera

#endif
