// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Operations: the calls of a service as typed handlers. Number, types and ranges of the arguments that arrive as JSON
 * are checked against the handler's parameters, so no handler checks them itself.
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

/** Outcome of a call; the results count only with kSuccess. */
struct Answer {
    wire::Status status = wire::kSuccess;
    nlohmann::json results = nlohmann::json::array();
};

/** A text argument or result: nothing is a null text. */
using Text = std::optional<std::string>;

/** A handler's view of the call: the state of its target, the target's place in its service, and the whole camera. */
template <typename State>
struct Scope {
    CameraModel &model;
    std::size_t index;
    State &state;
};

/** Reads one argument from JSON. @return whether it fits; `argument` is unchanged otherwise */
template <typename Value>
bool readArgument(const nlohmann::json &value, Value &argument) {
    static_assert(std::is_integral_v<Value>, "a kind of argument that the protocol does not have");
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

/** Name of an argument's type, for listings: "uint8", "int32", "uint32", "double" or "text". */
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

/** One call of a service. */
template <typename State>
struct Operation {
    std::string name;
    std::vector<std::string> arguments; ///< the kinds of its arguments
    /** Runs the call. The arguments are what follows the first two elements of the request. */
    std::function<Answer(const Scope<State> &, const nlohmann::json &request)> run;
};

template <typename State>
using Operations = std::vector<Operation<State>>;

/** Number of elements in front of a request's arguments: the operation and the target. */
inline constexpr std::size_t kRequestHead = 2;

namespace detail {

template <typename Tuple, std::size_t... Indices>
bool readArguments(const nlohmann::json &request, Tuple &arguments, std::index_sequence<Indices...> /*indices*/) {
    return request.size() == kRequestHead + sizeof...(Indices) &&
           (readArgument(request[kRequestHead + Indices], std::get<Indices>(arguments)) && ...);
}

} // namespace detail

/** Makes an operation of a handler; arguments that do not fit its parameters answer kInvalidArgument without it. */
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
        return value ? 1 : 0; // flags travel as numbers
    } else if constexpr (std::is_same_v<Value, Text>) {
        return value ? nlohmann::json(*value) : nlohmann::json();
    } else {
        return value;
    }
}

} // namespace detail

/** A successful answer with results. */
template <typename... Values>
Answer results(const Values &...values) {
    Answer answer;
    (answer.results.push_back(detail::resultValue(values)), ...);
    return answer;
}

} // namespace camera

#endif
