// SPDX-License-Identifier: Apache-2.0
#include "every_call.h"

#include <type_traits>

namespace scripted {

namespace {

template <typename Argument>
void addOutput(std::vector<Value> &outputs) {
    if constexpr (std::is_same_v<Argument, char **>) {
        outputs.emplace_back("text");
    } else if constexpr (std::is_pointer_v<Argument> && !std::is_same_v<Argument, const char *>) {
        outputs.emplace_back(std::int64_t{0});
    }
}

template <typename... Arguments>
std::vector<Value> outputsOf(zorva_core_status (*)(void *, const char *, Arguments...)) {
    std::vector<Value> outputs;
    (addOutput<Arguments>(outputs), ...);
    return outputs;
}

} // namespace

const std::vector<Call> &everyCall() {
#define ZORVA_CALL(service, operation, ...)                                                                            \
    {"zorva_api_" #service "_" #operation, outputsOf(zorva_api_##service##_##operation)},
    static const std::vector<Call> calls = {
#include "service_calls.def"
    };
    return calls;
}

const std::vector<std::string> &everyService() {
#define ZORVA_SERVICE(service) #service,
    static const std::vector<std::string> services = {
#include "service_calls.def"
    };
    return services;
}

} // namespace scripted
