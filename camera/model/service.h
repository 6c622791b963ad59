// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Services of the camera: their targets, fields and operations.
 */
#ifndef QUARNSNMP_CAMERA_SERVICE_H
#define QUARNSNMP_CAMERA_SERVICE_H

#include <algorithm>
#include <memory>

#include "clock.h"
#include "fields.h"
#include "operation.h"

namespace camera {

/** Time-dependent behaviour of a state, for services whose targets change between commands. */
template <typename State>
struct TimeCourse {
    /** Updates a state to CameraModel::now(), and reports the timed events up to then in their order. */
    void (*advance)(const Scope<State> &) = nullptr;
    /** Returns the time of the next timed event in seconds since the camera started; kNever without one. */
    double (*nextTime)(const State &) = nullptr;
    /** Applies the consequences of changed fields. @param before  the state before the change */
    void (*afterSet)(const Scope<State> &, const State &before) = nullptr;
};

/** Definition of a service with targets of one type; each state struct provides it as `State::definition()`. */
template <typename State>
struct Definition {
    std::string service;
    Fields<State> fields;
    Operations<State> operations;
    /** Checks fields against each other, after parsing and after each set. */
    std::optional<Problem> (*check)(const State &) = [](const State & /*state*/) -> std::optional<Problem> {
        return std::nullopt;
    };
    /** Nothing if states change only through commands. */
    std::optional<TimeCourse<State>> timeCourse = std::nullopt;
    /** Applies a restart of the camera to a state. Null without an effect. @param start  start values of the target */
    void (*restart)(const Scope<State> &, const State &start) = nullptr;
};

/** Description of a field for the documentation and for messages. */
struct FieldSummary {
    std::string key;
    std::string expected;
    nlohmann::json initial; ///< default of the field in camera files
    bool settable = true;
};

/** Description of an operation. */
struct OperationSummary {
    std::string name;
    std::vector<std::string> arguments; ///< types; see argumentKind()
};

/** Service with targets of any type. Target indices start at 0 and must be valid. */
class Service {
public:
    Service() = default;
    Service(const Service &) = delete;
    Service &operator=(const Service &) = delete;
    virtual ~Service() = default;

    /** Returns a service with copies of all targets, in their present states and with their start values. */
    virtual std::unique_ptr<Service> copy() const = 0;

    virtual const std::string &name() const = 0;
    virtual std::vector<FieldSummary> fields() const = 0;
    virtual std::vector<OperationSummary> operations() const = 0;
    virtual bool hasOperation(std::string_view operation) const = 0;
    virtual std::size_t targetCount() const = 0;

    /** Adds a target with the values of a camera file. Adds nothing and returns an error on failure. */
    virtual std::optional<Problem> addTarget(const nlohmann::json &values) = 0;

    /** Returns the fields of a target as one object with dotted keys. */
    virtual nlohmann::json values(std::size_t index) const = 0;

    /** Sets a field, or a group of fields with an object. Changes nothing and returns an error on failure. */
    virtual std::optional<Problem> set(CameraModel &model, std::size_t index, const std::string &key,
                                       const nlohmann::json &value) = 0;

    /** Checks the fields of a target against each other. */
    virtual std::optional<Problem> check(std::size_t index) const = 0;

    /** Runs an operation. @param request  has at least the operation and the target */
    virtual Answer call(CameraModel &model, std::size_t index, std::string_view operation,
                        const nlohmann::json &request) = 0;

    /** Returns true if targets change between commands. */
    virtual bool hasTimeCourse() const = 0;

    /** Updates a target to the model's present time, and reports its timed events up to then. */
    virtual void advance(CameraModel &model, std::size_t index) = 0;

    /** Returns the time of the next timed event in seconds since the camera started; kNever without one. */
    virtual double nextTime(std::size_t index) const = 0;

    /** Applies the consequences of all fields of a target when the camera starts. */
    virtual void start(CameraModel &model, std::size_t index) = 0;

    /** Returns true if a restart of the camera changes targets. */
    virtual bool hasRestart() const = 0;

    /** Applies a restart of the camera to a target, which must be up to date. */
    virtual void restart(CameraModel &model, std::size_t index) = 0;

    /** Makes the present values of a target its start values after a restart, in place of those of addTarget(). */
    virtual void keep(std::size_t index) = 0;
};

/** Service whose targets have one type of state. */
template <typename State>
class ServiceOf final : public Service {
public:
    std::unique_ptr<Service> copy() const override {
        auto copied = std::make_unique<ServiceOf<State>>();
        copied->targets_ = targets_;
        copied->starts_ = starts_;
        return copied;
    }

    const std::string &name() const override {
        return definition_.service;
    }

    std::vector<FieldSummary> fields() const override {
        const State initial{};
        std::vector<FieldSummary> summaries;
        for (const Field<State> &field : definition_.fields) {
            summaries.push_back({field.key, field.expected, field.get(initial), static_cast<bool>(field.set)});
        }
        return summaries;
    }

    std::vector<OperationSummary> operations() const override {
        std::vector<OperationSummary> summaries;
        for (const Operation<State> &operation : definition_.operations) {
            summaries.push_back({operation.name, operation.arguments});
        }
        return summaries;
    }

    bool hasOperation(std::string_view operation) const override {
        return find(operation) != nullptr;
    }

    std::size_t targetCount() const override {
        return targets_.size();
    }

    /** Returns the state of a target; null for an invalid index. */
    State *state(std::size_t index) {
        return index < targets_.size() ? &targets_[index] : nullptr;
    }

    std::optional<Problem> addTarget(const nlohmann::json &values) override {
        State state{};
        std::optional<Problem> problem = assignChecked("", values, state);
        if (!problem) {
            starts_.push_back(state);
            targets_.push_back(std::move(state));
        }
        return problem;
    }

    nlohmann::json values(std::size_t index) const override {
        return fieldValues(definition_.fields, targets_.at(index));
    }

    std::optional<Problem> set(CameraModel &model, std::size_t index, const std::string &key,
                               const nlohmann::json &value) override {
        if (key.empty()) {
            return unknownKey(settableKeys(definition_.fields), key);
        }
        State &state = targets_.at(index);
        State changed = state;
        std::optional<Problem> problem = assignChecked(key, value, changed);
        if (!problem) {
            std::swap(state, changed);
            if (definition_.timeCourse) {
                definition_.timeCourse->afterSet(Scope<State>{model, index, state}, changed);
            }
        }
        return problem;
    }

    std::optional<Problem> check(std::size_t index) const override {
        return definition_.check(targets_.at(index));
    }

    Answer call(CameraModel &model, std::size_t index, std::string_view name, const nlohmann::json &request) override {
        const Operation<State> *operation = find(name);
        if (operation == nullptr) {
            return {wire::kUnknownOperation};
        }
        return operation->run(Scope<State>{model, index, targets_.at(index)}, request);
    }

    bool hasTimeCourse() const override {
        return definition_.timeCourse.has_value();
    }

    void advance(CameraModel &model, std::size_t index) override {
        if (definition_.timeCourse) {
            definition_.timeCourse->advance(Scope<State>{model, index, targets_.at(index)});
        }
    }

    double nextTime(std::size_t index) const override {
        return definition_.timeCourse ? definition_.timeCourse->nextTime(targets_.at(index)) : kNever;
    }

    void start(CameraModel &model, std::size_t index) override {
        if (definition_.timeCourse) {
            definition_.timeCourse->afterSet(Scope<State>{model, index, targets_.at(index)}, State{});
        }
    }

    bool hasRestart() const override {
        return definition_.restart != nullptr;
    }

    void restart(CameraModel &model, std::size_t index) override {
        if (definition_.restart != nullptr) {
            definition_.restart(Scope<State>{model, index, targets_.at(index)}, starts_.at(index));
        }
    }

    void keep(std::size_t index) override {
        starts_.at(index) = targets_.at(index);
    }

private:
    const Operation<State> *find(std::string_view name) const {
        const auto &operations = definition_.operations;
        const auto found = std::find_if(operations.begin(), operations.end(),
                                        [name](const Operation<State> &each) { return each.name == name; });
        return found == operations.end() ? nullptr : &*found;
    }

    std::optional<Problem> assignChecked(const std::string &key, const nlohmann::json &value, State &state) const {
        std::optional<Problem> problem = assign(definition_.fields, key, value, state);
        return problem ? problem : definition_.check(state);
    }

    const Definition<State> &definition_ = State::definition();
    std::vector<State> targets_;
    std::vector<State> starts_;
};

/** Returns the names of all known services in alphabetical order. */
std::vector<std::string> knownServices();

/** Makes a service without targets. @return null for an unknown name */
std::unique_ptr<Service> makeService(const std::string &name);

} // namespace camera

#endif
