// SPDX-License-Identifier: Apache-2.0
#include "scene_values.h"

#include <algorithm>

#include "values.h"

namespace panel {

namespace {

using camera::mismatch;
using nlohmann::json;

std::string textOf(double number) {
    return camera::shown(json(number));
}

std::string numberExpected(const Range &range) {
    return "a number from " + textOf(range.lowest) + " to " + textOf(range.highest);
}

std::optional<double> numberIn(const json &value, const Range &range) {
    if (!value.is_number()) {
        return std::nullopt;
    }
    const auto number = value.get<double>();
    const bool isInside = number >= range.lowest && number <= range.highest;
    return isInside ? std::optional<double>(number) : std::nullopt;
}

const std::string kPoint = "a point [east, north] with numbers from -5000 to 5000";

std::optional<Vec2> pointIn(const json &value) {
    if (!value.is_array() || value.size() != 2) {
        return std::nullopt;
    }
    const std::optional<double> x = numberIn(value[0], kCoordinate);
    const std::optional<double> y = numberIn(value[1], kCoordinate);
    return x && y ? std::optional<Vec2>({*x, *y}) : std::nullopt;
}

std::optional<std::uint8_t> hexadecimalIn(const std::string &text, std::size_t place) {
    unsigned value = 0;
    for (const char digit : text.substr(place, 2)) {
        const std::size_t found = std::string("0123456789abcdef").find(digit);
        if (found == std::string::npos) {
            return std::nullopt;
        }
        value = value * 16U + static_cast<unsigned>(found);
    }
    return static_cast<std::uint8_t>(value);
}

} // namespace

SceneObject::SceneObject(const json &object, std::string path, const std::vector<std::string> &keys)
    : object_(object), path_(path), reader_(object, std::move(path), keys) {}

double SceneObject::number(const std::string &key, const Range &range) const {
    const json &value = reader_.required(key, numberExpected(range));
    const std::optional<double> number = numberIn(value, range);
    if (!number) {
        reader_.fail(key, mismatch(numberExpected(range), value));
    }
    return *number;
}

double SceneObject::number(const std::string &key, const Range &range, double fallback) const {
    return has(key) ? number(key, range) : fallback;
}

std::optional<int> SceneObject::integer(const std::string &key, int lowest, int highest) const {
    if (!has(key)) {
        return std::nullopt;
    }
    const std::optional<std::int64_t> number = camera::integerIn(object_.at(key), lowest, highest);
    if (!number) {
        reader_.fail(key, mismatch(camera::integerExpected(lowest, highest), object_.at(key)));
    }
    return static_cast<int>(*number);
}

bool SceneObject::flag(const std::string &key, bool fallback) const {
    if (!has(key)) {
        return fallback;
    }
    const json &value = object_.at(key);
    if (!value.is_boolean()) {
        reader_.fail(key, mismatch("true or false", value));
    }
    return value.get<bool>();
}

Vec2 SceneObject::point(const std::string &key) const {
    const json &value = reader_.required(key, kPoint);
    const std::optional<Vec2> point = pointIn(value);
    if (!point) {
        reader_.fail(key, mismatch(kPoint, value));
    }
    return *point;
}

std::vector<Vec2> SceneObject::points(const std::string &key, std::size_t fewest) const {
    const json &values = list(key, fewest, kMostPoints);
    std::vector<Vec2> points;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const std::optional<Vec2> point = pointIn(values[i]);
        if (!point) {
            reader_.fail(key + "[" + std::to_string(i) + "]", mismatch(kPoint, values[i]));
        }
        points.push_back(*point);
    }
    return points;
}

Color SceneObject::color(const std::string &key) const {
    const std::string expected = "a colour such as \"#b04a3c\"";
    const json &value = reader_.required(key, expected);
    if (value.is_string()) {
        const auto &text = value.get_ref<const std::string &>();
        if (text.size() == 7 && text.front() == '#') {
            const auto red = hexadecimalIn(text, 1);
            const auto green = hexadecimalIn(text, 3);
            const auto blue = hexadecimalIn(text, 5);
            if (red && green && blue) {
                return {*red, *green, *blue};
            }
        }
    }
    reader_.fail(key, mismatch(expected, value));
}

std::vector<std::string> SceneObject::texts(const std::string &key) const {
    const json &values = list(key, 1, kMostPoints);
    std::vector<std::string> texts;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const std::optional<std::string> text = camera::textIn(values[i], camera::kLongestText);
        if (!text || text->empty()) {
            reader_.fail(key + "[" + std::to_string(i) + "]", mismatch("a text", values[i]));
        }
        texts.push_back(*text);
    }
    return texts;
}

const json &SceneObject::list(const std::string &key, std::size_t fewest, std::size_t most) const {
    const std::string expected = "a list of " + std::to_string(fewest) + " to " + std::to_string(most) + " elements";
    const json &value = reader_.required(key, expected);
    if (!value.is_array() || value.size() < fewest || value.size() > most) {
        reader_.fail(key, mismatch(expected, value));
    }
    return value;
}

std::string SceneObject::choice(const std::string &key, const std::vector<std::string> &names) const {
    const std::string expected = "one of: " + camera::listed(names);
    const json &value = reader_.required(key, expected);
    const std::optional<std::string> name = camera::textIn(value, camera::kLongestText);
    if (!name || std::find(names.begin(), names.end(), *name) == names.end()) {
        reader_.fail(key, mismatch(expected, value));
    }
    return *name;
}

std::string SceneObject::elementPath(const std::string &key, std::size_t index) const {
    return camera::joinPath(path_, key) + "[" + std::to_string(index) + "]";
}

} // namespace panel
