// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Field records: the one description of a state struct, which serves the reading of a camera file, the printing of the
 * state, the control program's `set` and the reference in the documentation.
 *
 * A record's key is dotted, as in `pan.softPosition.minimum`; in JSON each dot is one level of nesting. The records of
 * a struct are flat, so that a struct inside a struct is just more records with a longer key.
 */
#ifndef QUARNSNMP_CAMERA_FIELDS_H
#define QUARNSNMP_CAMERA_FIELDS_H

#include <functional>
#include <limits>
#include <type_traits>
#include <utility>

#include "values.h"

namespace camera {

/** One field of a state struct. */
template <typename State>
struct Field {
    std::string key;
    std::string expected; ///< what a value must be, as in "an integer from 0 to 255"
    std::function<nlohmann::json(const State &)> get;
    /**
     * Checks and stores a value; the problem's path is relative to the field. Stores nothing after a problem. Empty for
     * a field that cannot be set.
     */
    std::function<std::optional<Problem>(State &, const nlohmann::json &)> set;
};

template <typename State>
using Fields = std::vector<Field<State>>;

/** A field whose values `parse` turns into the member's type, or into nothing when they do not fit. */
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

/** An integer in a range, ends included; without one, all that the member's type holds. */
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

/** A field that cannot be set, because it follows from commands; `kind` is what it shows, as in "an integer". */
template <typename State, typename Get>
Field<State> readOnlyField(std::string key, const std::string &kind, Get get) {
    return {std::move(key), kind + "; read-only", std::move(get), nullptr};
}

/** A flag: true or false. */
template <typename State>
Field<State> flagField(std::string key, bool State::*member) {
    return parsedField(std::move(key), member, "true or false", [](const nlohmann::json &value) {
        return value.is_boolean() ? std::optional<bool>(value.get<bool>()) : std::nullopt;
    });
}

/** A text. */
template <typename State>
Field<State> textField(std::string key, std::string State::*member, std::size_t longest = kLongestText) {
    return parsedField(std::move(key), member, "a text of at most " + std::to_string(longest) + " octets",
                       [longest](const nlohmann::json &value) { return textIn(value, longest); });
}

/** A text or null. */
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

/** The values of all fields as one object with dotted keys. */
template <typename State>
nlohmann::json fieldValues(const Fields<State> &fields, const State &state) {
    nlohmann::json values = nlohmann::json::object();
    for (const Field<State> &field : fields) {
        values[field.key] = field.get(state);
    }
    return values;
}

/** The keys of all fields that can be set. */
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

/** Turns an object with dotted keys into nested objects. */
nlohmann::json nested(const nlohmann::json &dotted);

/** The names on the next level below a group of keys; the whole struct is the group "". */
std::vector<std::string> membersOf(const std::vector<std::string> &keys, const std::string &group);

/** Says that a field cannot be set. */
Problem readOnly(const std::string &key);

/** Says that there is no such key, and which ones there are on the nearest level that exists. */
Problem unknownKey(const std::vector<std::string> &keys, const std::string &key);

/**
 * Stores a value in the field of a key or, when the key names a group, an object of values in the group's fields; the
 * group "" is the whole struct. After a problem part of the values may be stored, so callers work on a copy.
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
        // A dotted key in a file would be a second way to write the same field.
        if (item.key().empty() || item.key().find('.') != std::string::npos) {
            return unknownKey(settableKeys(fields), joinPath(key, item.key()));
        }
        if (std::optional<Problem> problem = assign(fields, joinPath(key, item.key()), item.value(), state)) {
            return problem;
        }
    }
    return std::nullopt;
}

/** A list of at most `longest` structs, each described by records of its own. */
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

/** Adds the records of a struct inside the struct, under a key of its own. */
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

/** Checks a field against limits that other fields hold; `limits` names them, as in "minimum to maximum". */
std::optional<Problem> checkWithin(const std::string &key, std::int64_t value, std::int64_t lowest,
                                   std::int64_t highest, const std::string &limits);

/** Checks a field against a lower limit that the field `limit` holds. */
std::optional<Problem> checkAtLeast(const std::string &key, std::int64_t value, std::int64_t lowest,
                                    const std::string &limit);

/** The first of some problems, so that checks can be listed. */
std::optional<Problem> firstOf(std::initializer_list<std::optional<Problem>> problems);

} // namespace camera

#endif
