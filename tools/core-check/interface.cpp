// SPDX-License-Identifier: Apache-2.0
#include "interface.h"

#include <cstdlib>
#include <string_view>
#include <tuple>
#include <type_traits>

#include <nlohmann/json.hpp>

namespace core_check {

namespace {

/** An argument of a request: an input has the value 1, an output is owned here. */
template <typename Parameter>
class Argument {
public:
    Parameter get() {
        if constexpr (std::is_pointer_v<Parameter>) {
            return &value_;
        } else {
            return value_;
        }
    }

    /** Returns the text of an output; empty for an input. */
    std::string text() const {
        if constexpr (std::is_pointer_v<Parameter>) {
            return ' ' + std::to_string(value_);
        } else {
            return "";
        }
    }

private:
    std::remove_pointer_t<Parameter> value_ = std::is_pointer_v<Parameter> ? 0 : 1;
};

template <>
class Argument<char **> {
public:
    Argument() = default;
    ~Argument() {
        // A failed call leaves the output undefined.
        if (succeeded_) {
            std::free(text_); // NOLINT(cppcoreguidelines-no-malloc): the library allocates with malloc
        }
    }
    Argument(const Argument &) = delete;
    Argument &operator=(const Argument &) = delete;

    char **get() {
        return &text_;
    }

    std::string text() {
        succeeded_ = true;
        return text_ == nullptr ? " null" : " \"" + printable(text_) + '"';
    }

private:
    char *text_ = nullptr;
    bool succeeded_ = false;
};

template <typename Function>
struct Caller;

template <typename... Parameters>
struct Caller<zorva_core_status (*)(void *, const char *, Parameters...)> {
    static Reading read(void *function, void *cookie, const char *target) {
        std::tuple<Argument<Parameters>...> arguments;
        Reading reading;
        std::apply(
            [&](auto &...argument) {
                reading.status = reinterpret_cast<zorva_core_status (*)(void *, const char *, Parameters...)>(function)(
                    cookie, target, argument.get()...);
                if (reading.status == 0) {
                    ((reading.values += argument.text()), ...);
                }
            },
            arguments);
        reading.values.erase(0, 1);
        return reading;
    }
};

/** Requests that only read have names with "get_". Everything else moves, stores, switches or restarts. */
constexpr bool isRead(std::string_view operation) {
    return operation.substr(0, 4) == "get_";
}

template <typename Function, bool isRead>
constexpr auto readerOf() -> decltype(Request::read) {
    if constexpr (isRead) {
        return &Caller<Function>::read;
    } else {
        return nullptr;
    }
}

} // namespace

const std::vector<Service> &services() {
    static const std::vector<Service> all = [] {
        std::vector<Service> list;
#define ZORVA_SERVICE(service)                                                                                         \
    list.push_back({#service, "zorva_api_" #service "_initiator_init", "zorva_api_" #service "_initiator_deinit", {}});
#define ZORVA_CALL(service, operation, parameters, ...)                                                                \
    list.back().requests.push_back({#operation, "zorva_api_" #service "_" #operation,                                  \
                                    readerOf<decltype(&zorva_api_##service##_##operation), isRead(#operation)>()});
#include "service_calls.def"
        return list;
    }();
    return all;
}

std::vector<std::string> requiredSymbols() {
    using namespace symbols;
    std::vector<std::string> names = {kInit,      kDeinit,         kLoggingInit,  kLoggingDeinit,   kLoggingLog,
                                      kIpcDeinit, kStatusToString, kGetTargetIds, kIpcInitiatorInit};
    for (const Service &service : services()) {
        names.emplace_back(service.openSymbol);
        names.emplace_back(service.closeSymbol);
        for (const Request &request : service.requests) {
            names.emplace_back(request.symbol);
        }
    }
    return names;
}

std::string printable(const std::string &text) {
    const std::string quoted = nlohmann::json(text).dump(-1, ' ', true, nlohmann::json::error_handler_t::replace);
    return quoted.substr(1, quoted.size() - 2);
}

} // namespace core_check
