// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * A service of the camera: its targets, their fields and its operations.
 */
#ifndef QUARNSNMP_CAMERA_SERVICE_H
#define QUARNSNMP_CAMERA_SERVICE_H

#include <algorithm>
#include <memory>

#include "clock.h"
#include "fields.h"
#include "operation.h"

namespace camera {

/** How states change with time, for services whose targets do more than commands tell them at once. */
template <typename State>
struct TimeCourse {
    /** Brings a state to CameraModel::now(), and reports what happened to it by itself until then, in order. */
    void (*advance)(const Scope<State> &) = nullptr;
    /** When the next thing happens to a state by itself, in seconds since the camera started; else kNever. */
    double (*nextTime)(const State &) = nullptr;
    /** Draws the consequences of fields that were set; `before` is the state without them. */
    void (*afterSet)(const Scope<State> &, const State &before) = nullptr;
};

/** What is the same for all services of a kind; a state struct offers its own with `State::definition()`. */
template <typename State>
struct Definition {
    std::string service;
    Fields<State> fields;
    Operations<State> operations;
    /** Checks fields against each other, after reading and after each set. */
    std::optional<Problem> (*check)(const State &) = [](const State & /*state*/) -> std::optional<Problem> {
        return std::nullopt;
    };
    /** Nothing when states change through commands only. */
    std::optional<TimeCourse<State>> timeCourse = std::nullopt;
    /** What a restart of the camera does to a state; `start` is what the target starts with. Null when that is nothing.
     */
    void (*restart)(const Scope<State> &, const State &start) = nullptr;
};

/** Name and meaning of a field, for the reference and for messages. */
struct FieldSummary {
    std::string key;
    std::string expected;
    nlohmann::json initial; ///< value when a camera file leaves the field out
    bool settable = true;
};

/** Name and arguments of an operation. */
struct OperationSummary {
    std::string name;
    std::vector<std::string> arguments; ///< as argumentKind() names them
};

/** A service, whatever its targets hold. Indices of targets start at 0 and must exist. */
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

    /** Adds a target with the values of a camera file; adds nothing after a problem. */
    virtual std::optional<Problem> addTarget(const nlohmann::json &values) = 0;

    /** A target's fields as one object with dotted keys. */
    virtual nlohmann::json values(std::size_t index) const = 0;

    /** Sets a field, or a group of them with an object; changes nothing after a problem. */
    virtual std::optional<Problem> set(CameraModel &model, std::size_t index, const std::string &key,
                                       const nlohmann::json &value) = 0;

    /** Checks a target's fields against each other. */
    virtual std::optional<Problem> check(std::size_t index) const = 0;

    /** Runs an operation; the request has at least the operation and the target. */
    virtual Answer call(CameraModel &model, std::size_t index, std::string_view operation,
                        const nlohmann::json &request) = 0;

    /** Whether things happen to targets by themselves. */
    virtual bool hasTimeCourse() const = 0;

    /** Brings a target to the model's present, and reports what happened to it by itself until then. */
    virtual void advance(CameraModel &model, std::size_t index) = 0;

    /** When the next thing happens to a target by itself, in seconds since the camera started; else kNever. */
    virtual double nextTime(std::size_t index) const = 0;

    /** Draws the consequences of what a target holds when the camera starts, as if all of it had been set. */
    virtual void start(CameraModel &model, std::size_t index) = 0;

    /** Whether a target comes out of a restart of the camera other than it went in. */
    virtual bool hasRestart() const = 0;

    /** Does to a target what a restart of the camera does; the target must have been brought to the present. */
    virtual void restart(CameraModel &model, std::size_t index) = 0;

    /** Makes what a target now holds what it starts with after a restart; before, that is what it was added with. */
    virtual void keep(std::size_t index) = 0;
};

/** The service whose targets are of one kind of state. */
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

    /** The state of a target; null when there is no such target. */
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

/** The names of all services that a camera can have, in alphabetical order. */
std::vector<std::string> knownServices();

/** Makes a service without targets; null for an unknown name. */
std::unique_ptr<Service> makeService(const std::string &name);

} // namespace camera

#endif
