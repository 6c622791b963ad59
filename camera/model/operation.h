// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Operations: the calls of a service as typed handlers. The parameters of a handler determine the number, types and
 * ranges of the JSON arguments, so handlers need no checks of their own.
 */
#ifndef QUARNSNMP_CAMERA_OPERATION_H
#define QUARNSNMP_CAMERA_OPERATION_H

#include <functional>
#include <limits>
#include <tuple>
#include <type_traits>
#include <utility>

#include "status.h"
#include "values.h"

namespace camera {

class CameraModel;

/** Answer to a call; the results are valid only with kSuccess. */
struct Answer {
    wire::Status status = wire::kSuccess;
    nlohmann::json results = nlohmann::json::array();
};

/** Text argument or result; nothing stands for a null text. */
using Text = std::optional<std::string>;

/** Context of a call: the camera, the index of the target in its service, and the state of the target. */
template <typename State>
struct Scope {
    CameraModel &model;
    std::size_t index;
    State &state;
};

/** Reads an argument from JSON. @return false for an invalid value, which leaves `argument` unchanged */
template <typename Value>
bool readArgument(const nlohmann::json &value, Value &argument) {
    static_assert(std::is_integral_v<Value>, "argument type without a form in the protocol");
    const std::optional<std::int64_t> number =
        integerIn(value, std::numeric_limits<Value>::min(), std::numeric_limits<Value>::max());
    if (number) {
        argument = static_cast<Value>(*number);
    }
    return number.has_value();
}
template <>
bool readArgument<double>(const nlohmann::json &value, double &argument);
template <>
bool readArgument<Text>(const nlohmann::json &value, Text &argument);

/** Returns the name of an argument type: "uint8", "int32", "uint32", "double" or "text". */
template <typename Value>
constexpr const char *argumentKind() {
    if constexpr (std::is_same_v<Value, Text>) {
        return "text";
    } else if constexpr (std::is_same_v<Value, double>) {
        return "double";
    } else if constexpr (std::is_same_v<Value, std::uint8_t>) {
        return "uint8";
    } else if constexpr (std::is_same_v<Value, std::uint32_t>) {
        return "uint32";
    } else {
        static_assert(std::is_same_v<Value, std::int32_t>);
        return "int32";
    }
}

/** Call of a service. */
template <typename State>
struct Operation {
    std::string name;
    std::vector<std::string> arguments; ///< types of the arguments; see argumentKind()
    /** Runs the call. The arguments start at the third element of the request. */
    std::function<Answer(const Scope<State> &, const nlohmann::json &request)> run;
};

template <typename State>
using Operations = std::vector<Operation<State>>;

/** Number of elements before the arguments of a request: the operation and the target. */
inline constexpr std::size_t kRequestHead = 2;

namespace detail {

template <typename Tuple, std::size_t... Indices>
bool readArguments(const nlohmann::json &request, Tuple &arguments, std::index_sequence<Indices...> /*indices*/) {
    return request.size() == kRequestHead + sizeof...(Indices) &&
           (readArgument(request[kRequestHead + Indices], std::get<Indices>(arguments)) && ...);
}

} // namespace detail

/** Makes an operation with a handler. Arguments that do not match its parameters are refused: kInvalidArgument. */
template <typename State, typename... Parameters>
Operation<State> operation(std::string name, Answer (*handler)(const Scope<State> &, Parameters...)) {
    auto run = [handler](const Scope<State> &scope, const nlohmann::json &request) -> Answer {
        std::tuple<std::decay_t<Parameters>...> arguments;
        if (!detail::readArguments(request, arguments, std::index_sequence_for<Parameters...>())) {
            return {wire::kInvalidArgument};
        }
        return std::apply([&](const auto &...values) { return handler(scope, values...); }, arguments);
    };
    return {std::move(name), {argumentKind<std::decay_t<Parameters>>()...}, std::move(run)};
}

namespace detail {

template <typename Value>
nlohmann::json resultValue(const Value &value) {
    if constexpr (std::is_same_v<Value, bool>) {
        return value ? 1 : 0; // flags are numbers in messages
    } else if constexpr (std::is_same_v<Value, Text>) {
        return value ? nlohmann::json(*value) : nlohmann::json();
    } else {
        return value;
    }
}

} // namespace detail

/** Returns a successful answer with results. */
template <typename... Values>
Answer results(const Values &...values) {
    Answer answer;
    (answer.results.push_back(detail::resultValue(values)), ...);
    return answer;
}

} // namespace camera

#endif
