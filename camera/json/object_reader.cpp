// SPDX-License-Identifier: Apache-2.0
#include "object_reader.h"

#include <algorithm>
#include <utility>

#include "json_text.h"
#include "values.h"

namespace camera {

namespace {

std::string textExpected(std::size_t shortest) {
    const std::string longest = std::to_string(kLongestText) + " octets";
    return shortest > 0 ? "a text of " + std::to_string(shortest) + " to " + longest : "a text of at most " + longest;
}

} // namespace

ObjectReader::ObjectReader(const nlohmann::json &object, std::string path, const std::vector<std::string> &keys)
    : object_(object), path_(std::move(path)) {
    if (!object.is_object()) {
        fail("", mismatch("an object with " + listed(keys), object));
    }
    for (const auto &item : object.items()) {
        if (std::find(keys.begin(), keys.end(), item.key()) == keys.end()) {
            fail(item.key(), "unknown key; expected one of: " + listed(keys));
        }
    }
}

const nlohmann::json &ObjectReader::required(const std::string &key, const std::string &expected) const {
    const auto found = object_.find(key);
    if (found == object_.end()) {
        fail(key, "missing; expected " + expected);
    }
    return *found;
}

std::string ObjectReader::requiredText(const std::string &key) const {
    const nlohmann::json &value = required(key, textExpected(1));
    const std::optional<std::string> text = textIn(value, kLongestText);
    if (!text || text->empty()) {
        fail(key, mismatch(textExpected(1), value));
    }
    return *text;
}

std::string ObjectReader::optionalText(const std::string &key) const {
    const auto found = object_.find(key);
    if (found == object_.end()) {
        return {};
    }
    const std::optional<std::string> text = textIn(*found, kLongestText);
    if (!text) {
        fail(key, mismatch(textExpected(0), *found));
    }
    return *text;
}

void ObjectReader::fail(const std::string &key, const std::string &text) const {
    throw JsonTextError(toString({joinPath(path_, key), text}));
}

} // namespace camera
