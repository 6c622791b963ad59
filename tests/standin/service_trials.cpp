// SPDX-License-Identifier: Apache-2.0
#include "service_trials.h"

#include <array>
#include <cstdlib>
#include <limits>
#include <tuple>
#include <utility>

namespace {

using nlohmann::json;

/** Values of a type: its limits, and values that are hard to write and read. */
template <typename Number>
Number sample(unsigned index) {
    using Limits = std::numeric_limits<Number>;
    constexpr std::array<Number, kTrialRounds> values = {Limits::min(), Limits::max(), static_cast<Number>(-1),
                                                         Number{0}, Number{123}};
    return values[index % kTrialRounds];
}

template <>
double sample<double>(unsigned index) {
    using Limits = std::numeric_limits<double>;
    constexpr std::array<double, kTrialRounds> values = {0.1, -1.0 / 3.0, Limits::denorm_min(), Limits::max(), 1.0};
    return values[index % kTrialRounds];
}

template <>
const char *sample<const char *>(unsigned index) {
    constexpr std::array<const char *, kTrialRounds> values = {"plain", "", "quote \" backslash \\ line\nend\ttab",
                                                               "gr\xc3\xb6\xc3\x9f\x65 \xe2\x82\xac", nullptr};
    return values[index % kTrialRounds];
}

json toJson(const char *text) {
    return text != nullptr ? json(text) : json(nullptr);
}

template <typename Number>
json toJson(Number number) {
    return number;
}

/** An input. */
template <typename Type>
class Input {
public:
    explicit Input(unsigned index) : value_(sample<Type>(index)) {}
    void passNull(bool /*isWanted*/) {}
    Type pass() {
        return value_;
    }
    void addArgument(json &list) const {
        list.push_back(toJson(value_));
    }
    void addResult(json & /*list*/) const {}
    void addOutput(json & /*list*/) const {}
    void addBadResponses(std::vector<std::vector<json>> & /*list*/) const {}
    static constexpr bool kIsOutput = false;

private:
    Type value_;
};

/** One argument of a call: an input, unless it is one of the pointers below. */
template <typename Type>
class Slot : public Input<Type> {
    using Input<Type>::Input;
};

template <>
class Slot<const char *> : public Input<const char *> {
    using Input<const char *>::Input;
};

/** Number in an output before the call, different from the result. */
template <typename Number>
Number untouchedBy(Number result) {
    return static_cast<Number>(result ^ Number{0x55});
}

/** An output; an index selects its result. */
class Output {
public:
    void passNull(bool isWanted) {
        isNull_ = isWanted;
    }
    void addArgument(json & /*list*/) const {}
    static constexpr bool kIsOutput = true;

protected:
    bool isNull_ = false;
};

/** An output for a number. */
template <typename Number>
class Slot<Number *> : public Output {
public:
    explicit Slot(unsigned index)
        : result_(sample<Number>(index)), untouched_(untouchedBy(result_)), storage_(untouched_) {}
    Number *pass() {
        return isNull_ ? nullptr : &storage_;
    }
    void addResult(json &list) const {
        list.push_back(result_);
    }
    void addOutput(json &list) const {
        list.push_back(storage_ == untouched_ ? json("untouched") : json(storage_));
    }
    void addBadResponses(std::vector<std::vector<json>> &list) const {
        using Limits = std::numeric_limits<Number>;
        list.push_back({std::int64_t{Limits::min()} - 1, std::int64_t{Limits::max()} + 1, 1.5, 1.0, "1", true, nullptr,
                        json::array(), json::object(), std::numeric_limits<std::uint64_t>::max(),
                        std::numeric_limits<std::int64_t>::min(), 1e300});
    }

private:
    Number result_;
    Number untouched_;
    Number storage_;
};

/** An output for a text. */
template <>
class Slot<char **> : public Output {
public:
    explicit Slot(unsigned index) : result_(toJson(sample<const char *>(index))) {}
    Slot(const Slot &) = delete;
    Slot &operator=(const Slot &) = delete;
    ~Slot() {
        if (storage_ != &untouched_) {
            std::free(storage_);
        }
    }
    char **pass() {
        return isNull_ ? nullptr : &storage_;
    }
    void addResult(json &list) const {
        list.push_back(result_);
    }
    void addOutput(json &list) const {
        list.push_back(storage_ == &untouched_ ? json("untouched") : toJson(static_cast<const char *>(storage_)));
    }
    void addBadResponses(std::vector<std::vector<json>> &list) const {
        list.push_back({1, 0, 1.5, true, json::array({"text"}), json::object(), std::string("with \0 in it", 12)});
    }

private:
    json result_;
    char untouched_ = '\0';
    char *storage_ = &untouched_;
};

template <typename... Types>
class TypedTrial : public Trial {
public:
    using Function = zorva_core_status (*)(void *, const char *, Types...);

    TypedTrial(Function function, unsigned round)
        : TypedTrial(function, round, std::make_integer_sequence<unsigned, sizeof...(Types)>()) {}

    json arguments() const override {
        return collect([](const auto &slot, json &list) { slot.addArgument(list); });
    }
    json results() const override {
        return collect([](const auto &slot, json &list) { slot.addResult(list); });
    }
    json outputs() const override {
        return collect([](const auto &slot, json &list) { slot.addOutput(list); });
    }
    std::vector<std::vector<json>> badResponses() const override {
        std::vector<std::vector<json>> list;
        std::apply([&](const auto &...slot) { (slot.addBadResponses(list), ...); }, slots_);
        return list;
    }
    zorva_core_status run(void *cookie, const char *target, std::optional<std::size_t> nullOutput) override {
        std::size_t position = 0;
        const auto choose = [&](auto &slot) {
            slot.passNull(slot.kIsOutput && position == nullOutput);
            position += slot.kIsOutput ? 1 : 0;
        };
        return std::apply(
            [&](auto &...slot) {
                (choose(slot), ...);
                return function_(cookie, target, slot.pass()...);
            },
            slots_);
    }

private:
    template <unsigned... Indices>
    TypedTrial(Function function, unsigned round, std::integer_sequence<unsigned, Indices...> /*positions*/)
        : function_(function), slots_((round + Indices)...) {}

    template <typename Visit>
    json collect(const Visit &visit) const {
        json list = json::array();
        std::apply([&](const auto &...slot) { (visit(slot, list), ...); }, slots_);
        return list;
    }

    Function function_;
    std::tuple<Slot<Types>...> slots_;
};

template <typename... Types>
ServiceCall describe(const char *service, const char *operation, OpenFunction initiatorInit,
                     zorva_core_status (*function)(void *, const char *, Types...)) {
    return {service, operation, initiatorInit,
            [function](unsigned round) { return std::make_unique<TypedTrial<Types...>>(function, round); }};
}

} // namespace

const std::vector<ServiceCall> &serviceCalls() {
    static const std::vector<ServiceCall> calls = {
#define ZORVA_CALL(service, operation, parameters, ...)                                                                \
    describe(#service, #operation, &zorva_api_##service##_initiator_init, &zorva_api_##service##_##operation),
#include "service_calls.def"
    };
    return calls;
}

std::ostream &operator<<(std::ostream &stream, const ServiceCall &call) {
    return stream << call.service << '_' << call.operation;
}
