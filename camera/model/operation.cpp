// SPDX-License-Identifier: Apache-2.0
#include "operation.h"

#include "fields.h"

namespace camera {

template <>
bool readArgument<double>(const nlohmann::json &value, double &argument) {
    if (!value.is_number()) {
        return false;
    }
    argument = value.get<double>();
    return true;
}

template <>
bool readArgument<Text>(const nlohmann::json &value, Text &argument) {
    if (value.is_null()) {
        argument.reset();
        return true;
    }
    const std::optional<std::string> text = textIn(value, kLongestText);
    if (text) {
        argument = text;
    }
    return text.has_value();
}

} // namespace camera
