// SPDX-License-Identifier: Apache-2.0
#include "objects.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <stdexcept>

#include <fmt/format.h>

#include "octets_text.h"

namespace ptzctl {

namespace {

/** The part of a column's identifier in front of the row; empty for an object that is no column. */
std::string columnOf(const Object &object) {
    const std::string identifier = object.identifier;
    const bool isColumn = std::string(object.name).find("Table.") != std::string::npos;
    return isColumn ? identifier.substr(0, identifier.rfind('.')) : "";
}

/** An identifier as answers have it: without a leading dot, and without zeros in front. @throws std::invalid_argument
 */
std::string normalised(const std::string &text) {
    std::string identifier;
    for (const std::uint32_t number : parseIdentifier(text)) {
        identifier.append(identifier.empty() ? "" : ".").append(std::to_string(number));
    }
    return identifier;
}

std::int64_t numberOf(const std::string &text) {
    std::int32_t number = 0;
    const char *const end = text.data() + text.size();
    const auto [last, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || last != end) {
        throw std::invalid_argument("'" + text + "' is not a number of 32 bits");
    }
    return number;
}

Type typeOf(Syntax syntax) {
    switch (syntax) {
    case Syntax::Integer:
        return Type::Integer;
    case Syntax::Gauge:
        return Type::Gauge32;
    default:
        return Type::Octets;
    }
}

} // namespace

const std::vector<Object> &objects() {
    static const std::vector<Object> all = {
        {"maxModules", "1.3.6.1.4.1.1206.4.2.6.1.2.0", false, Syntax::Integer, 0, false},
        {"moduleNumber", "1.3.6.1.4.1.1206.4.2.6.1.3.1.1.0", false, Syntax::Integer, 0, false},
        {"moduleDeviceNode", "1.3.6.1.4.1.1206.4.2.6.1.3.1.2.0", false, Syntax::Text, 0, false},
        {"moduleMake", "1.3.6.1.4.1.1206.4.2.6.1.3.1.3.0", false, Syntax::Text, 0, false},
        {"moduleModel", "1.3.6.1.4.1.1206.4.2.6.1.3.1.4.0", false, Syntax::Text, 0, false},
        {"moduleVersion", "1.3.6.1.4.1.1206.4.2.6.1.3.1.5.0", false, Syntax::Text, 0, false},
        {"moduleType", "1.3.6.1.4.1.1206.4.2.6.1.3.1.6.0", false, Syntax::Integer, 0, false},
        {"rangeMaximumPreset", "1.3.6.1.4.1.1206.4.2.7.1.1.0", false, Syntax::Integer, 0, false},
        {"rangePanLeftLimit", "1.3.6.1.4.1.1206.4.2.7.1.2.0", false, Syntax::Integer, 0, false},
        {"rangePanRightLimit", "1.3.6.1.4.1.1206.4.2.7.1.3.0", false, Syntax::Integer, 0, false},
        {"rangePanHomePosition", "1.3.6.1.4.1.1206.4.2.7.1.4.0", false, Syntax::Integer, 0, false},
        {"rangeTrueNorthOffset", "1.3.6.1.4.1.1206.4.2.7.1.5.0", true, Syntax::Integer, 0, false},
        {"rangeTiltUpLimit", "1.3.6.1.4.1.1206.4.2.7.1.6.0", false, Syntax::Integer, 0, false},
        {"rangeTiltDownLimit", "1.3.6.1.4.1.1206.4.2.7.1.7.0", false, Syntax::Integer, 0, false},
        {"rangeZoomLimit", "1.3.6.1.4.1.1206.4.2.7.1.8.0", false, Syntax::Integer, 0, false},
        {"rangeFocusLimit", "1.3.6.1.4.1.1206.4.2.7.1.9.0", false, Syntax::Integer, 0, false},
        {"rangeIrisLimit", "1.3.6.1.4.1.1206.4.2.7.1.10.0", false, Syntax::Integer, 0, false},
        {"rangeMinimumPanStepAngle", "1.3.6.1.4.1.1206.4.2.7.1.11.0", false, Syntax::Integer, 0, false},
        {"rangeMinimumTiltStepAngle", "1.3.6.1.4.1.1206.4.2.7.1.12.0", false, Syntax::Integer, 0, false},
        {"timeoutPan", "1.3.6.1.4.1.1206.4.2.7.2.1.0", true, Syntax::Integer, 0, false},
        {"timeoutTilt", "1.3.6.1.4.1.1206.4.2.7.2.2.0", true, Syntax::Integer, 0, false},
        {"timeoutZoom", "1.3.6.1.4.1.1206.4.2.7.2.3.0", true, Syntax::Integer, 0, false},
        {"timeoutFocus", "1.3.6.1.4.1.1206.4.2.7.2.4.0", true, Syntax::Integer, 0, false},
        {"timeoutIris", "1.3.6.1.4.1.1206.4.2.7.2.5.0", true, Syntax::Integer, 0, false},
        {"presetGotoPosition", "1.3.6.1.4.1.1206.4.2.7.3.1.0", true, Syntax::Octets, 1, true},
        {"presetStorePosition", "1.3.6.1.4.1.1206.4.2.7.3.2.0", true, Syntax::Octets, 1, true},
        {"positionPan", "1.3.6.1.4.1.1206.4.2.7.4.1.0", true, Syntax::Octets, 4, false},
        {"positionTilt", "1.3.6.1.4.1.1206.4.2.7.4.2.0", true, Syntax::Octets, 4, false},
        {"positionZoomLens", "1.3.6.1.4.1.1206.4.2.7.4.3.0", true, Syntax::Octets, 4, false},
        {"positionFocusLens", "1.3.6.1.4.1.1206.4.2.7.4.4.0", true, Syntax::Octets, 4, false},
        {"positionIrisLens", "1.3.6.1.4.1.1206.4.2.7.4.5.0", true, Syntax::Octets, 4, false},
        {"systemLensFeatureControl", "1.3.6.1.4.1.1206.4.2.7.5.4.0", true, Syntax::Octets, 2, false},
        {"systemLensFeatureStatus", "1.3.6.1.4.1.1206.4.2.7.5.5.0", false, Syntax::Octets, 1, false},
        {"systemLensEquipped", "1.3.6.1.4.1.1206.4.2.7.5.6.0", true, Syntax::Octets, 1, false},
        {"alarmStatus", "1.3.6.1.4.1.1206.4.2.7.6.1.0.0", false, Syntax::Octets, 1, false},
        {"inputStatus", "1.3.6.1.4.1.1206.4.2.7.7.1.0", false, Syntax::Octets, 1, false},
        {"outputStatus", "1.3.6.1.4.1.1206.4.2.7.8.1.0", false, Syntax::Octets, 1, false},
        {"outputControl", "1.3.6.1.4.1.1206.4.2.7.8.2.0", true, Syntax::Octets, 2, false},
        {"modelNumber", "1.3.6.1.4.1.99999.1.1.1.0.0", false, Syntax::Text, 0, false},
        {"modelName", "1.3.6.1.4.1.99999.1.1.2.0.0", false, Syntax::Text, 0, false},
        {"serialNumber", "1.3.6.1.4.1.99999.1.1.3.0.0", false, Syntax::Text, 0, false},
        {"fwVersion", "1.3.6.1.4.1.99999.1.1.4.0.0", false, Syntax::Text, 0, false},
        {"swVersion", "1.3.6.1.4.1.99999.1.1.5.0.0", false, Syntax::Text, 0, false},
        {"hwVersion", "1.3.6.1.4.1.99999.1.1.6.0.0", false, Syntax::Text, 0, false},
        {"temperature", "1.3.6.1.4.1.99999.1.1.7.0.0", false, Syntax::Gauge, 0, false},
        {"power", "1.3.6.1.4.1.99999.1.1.8.0.0", false, Syntax::Integer, 0, false},
        {"voltage", "1.3.6.1.4.1.99999.1.1.9.0.0", false, Syntax::Integer, 0, false},
        {"rebootDevice", "1.3.6.1.4.1.99999.1.1.100.0.0", true, Syntax::Integer, 0, false},
        {"alarmStatesTable.1", "1.3.6.1.4.1.99999.1.3.1.1.1.1", false, Syntax::Text, 0, false},
        {"alarmStatesTable.2", "1.3.6.1.4.1.99999.1.3.1.1.2.1", false, Syntax::Integer, 0, false},
        {"alarmStatesTable.3", "1.3.6.1.4.1.99999.1.3.1.1.3.1", false, Syntax::Integer, 0, false},
        {"relayStatesTable.1", "1.3.6.1.4.1.99999.1.3.2.1.1.1", false, Syntax::Text, 0, false},
        {"relayStatesTable.2", "1.3.6.1.4.1.99999.1.3.2.1.2.1", false, Syntax::Integer, 0, false},
        {"relayStatesTable.3", "1.3.6.1.4.1.99999.1.3.2.1.3.1", true, Syntax::Integer, 0, false},
    };
    return all;
}

const Object &objectOf(const std::string &name) {
    const auto found =
        std::find_if(objects().begin(), objects().end(), [&](const Object &object) { return name == object.name; });
    if (found == objects().end()) {
        throw std::invalid_argument("there is no object '" + name + "'; `ptzctl get --list` shows the names");
    }
    return *found;
}

std::string identifierOf(const std::string &name) {
    const bool numeric = name.find_first_not_of("0123456789.") == std::string::npos;
    if (numeric) {
        return normalised(name);
    }
    const std::size_t dot = name.rfind('.');
    const std::string row = dot == std::string::npos ? "" : name.substr(dot);
    const auto column = std::find_if(objects().begin(), objects().end(), [&](const Object &object) {
        return !columnOf(object).empty() && name.compare(0, dot, object.name) == 0;
    });
    return column != objects().end() && !row.empty() ? normalised(columnOf(*column) + row) : objectOf(name).identifier;
}

const Object *objectAt(const std::string &identifier) {
    const auto found = std::find_if(objects().begin(), objects().end(), [&](const Object &object) {
        const std::string column = columnOf(object);
        return column.empty() ? identifier == object.identifier : identifier.substr(0, identifier.rfind('.')) == column;
    });
    return found == objects().end() ? nullptr : &*found;
}

std::string nameOf(const std::string &identifier) {
    const Object *const object = objectAt(identifier);
    if (object == nullptr) {
        return identifier;
    }
    return columnOf(*object).empty() ? object->name : object->name + identifier.substr(identifier.rfind('.'));
}

Variable valueNamed(const std::string &name, const std::string &text) {
    const std::string identifier = identifierOf(name);
    const Object *const object = objectAt(identifier);
    if (object == nullptr) {
        throw std::invalid_argument("what " + name +
                                    " holds is not known; the names of `ptzctl get --list` can be written");
    }
    if (!object->writable) {
        throw std::invalid_argument(nameOf(identifier) + " can only be read");
    }
    return object->syntax == Syntax::Integer || object->writtenAsNumber ? integer(identifier, numberOf(text))
                                                                        : octetString(identifier, octetsOf(text));
}

std::string whyNotOf(const Object &object, const Variable &value) {
    // Public texts have the numbers of presets as INTEGER, and this product's cameras answer them as an octet.
    if (object.writtenAsNumber && value.type == Type::Integer) {
        return "";
    }
    const Type expected = typeOf(object.syntax);
    if (value.type != expected) {
        return fmt::format("the camera answered {} where {} was expected", typeName(value.type), typeName(expected));
    }
    if (object.syntax == Syntax::Octets && value.octets.size() != object.size) {
        return fmt::format("the camera answered {} octets ({}) where {} were expected", value.octets.size(),
                           hexText(value.octets), object.size);
    }
    return "";
}

} // namespace ptzctl
