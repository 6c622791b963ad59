// SPDX-License-Identifier: Apache-2.0
#include "camera_state.h"

#include <limits>
#include <utility>

#include "json_text.h"
#include "values.h"

namespace panel {

namespace {

using nlohmann::json;

/** Object of an answer. Unlike the files of users, it may have more members than are read. */
class Members {
public:
    Members(const json &object, std::string path) : object_(object), path_(std::move(path)) {
        if (!object.is_object()) {
            throw CameraStateError(camera::toString({path_, camera::mismatch("an object", object)}));
        }
    }

    const json &value(const std::string &key) const {
        const auto found = object_.find(key);
        if (found == object_.end()) {
            fail(key, "missing");
        }
        return *found;
    }

    Members object(const std::string &key) const {
        return {value(key), camera::joinPath(path_, key)};
    }

    const json &list(const std::string &key) const {
        const json &found = value(key);
        if (!found.is_array()) {
            fail(key, camera::mismatch("a list", found));
        }
        return found;
    }

    std::int64_t integer(const std::string &key) const {
        return integerOf(key, value(key));
    }

    std::optional<std::int64_t> optionalInteger(const std::string &key) const {
        const json &found = value(key);
        return found.is_null() ? std::nullopt : std::optional<std::int64_t>(integerOf(key, found));
    }

    bool flag(const std::string &key) const {
        const json &found = value(key);
        if (!found.is_boolean()) {
            fail(key, camera::mismatch("true or false", found));
        }
        return found.get<bool>();
    }

    std::string text(const std::string &key) const {
        const json &found = value(key);
        if (!found.is_string()) {
            fail(key, camera::mismatch("a text", found));
        }
        return found.get<std::string>();
    }

    /** Returns a text; empty for null. */
    std::string nullableText(const std::string &key) const {
        return value(key).is_null() ? std::string() : text(key);
    }

    double number(const std::string &key) const {
        const json &found = value(key);
        if (!found.is_number()) {
            fail(key, camera::mismatch("a number", found));
        }
        return found.get<double>();
    }

    /** Returns an element of a list as an object. */
    Members element(const std::string &key, std::size_t index) const {
        return {list(key).at(index), camera::joinPath(path_, key) + "[" + std::to_string(index) + "]"};
    }

    /** Calls a function with each member of an object that consists of objects. */
    template <typename Function>
    void forEachObject(const std::string &key, Function function) const {
        const Members all = object(key);
        for (const auto &item : all.object_.items()) {
            function(item.key(), Members(item.value(), camera::joinPath(all.path_, item.key())));
        }
    }

    bool has(const std::string &key) const {
        return object_.contains(key);
    }

    std::size_t size() const {
        return object_.size();
    }

private:
    [[noreturn]] void fail(const std::string &key, const std::string &text) const {
        throw CameraStateError(camera::toString({camera::joinPath(path_, key), text}));
    }

    std::int64_t integerOf(const std::string &key, const json &found) const {
        constexpr std::int64_t kLowest = std::numeric_limits<std::int64_t>::min();
        constexpr std::int64_t kHighest = std::numeric_limits<std::int64_t>::max();
        const std::optional<std::int64_t> number = camera::integerIn(found, kLowest, kHighest);
        if (!number) {
            fail(key, camera::mismatch("an integer", found));
        }
        return *number;
    }

    const json &object_;
    std::string path_;
};

void readDrive(const Members &members, DriveState &drive) {
    drive.position = members.integer("position");
    drive.velocity = members.integer("velocity");
    drive.target = members.optionalInteger("target");
    drive.moving = members.flag("moving");
    drive.minimum = members.integer("minimum");
    drive.maximum = members.integer("maximum");
}

LimitState readLimits(const Members &members) {
    return {members.flag("enabled"), members.integer("minimum"), members.integer("maximum")};
}

AxisState readAxis(const Members &members) {
    AxisState axis;
    readDrive(members, axis);
    axis.endless = members.flag("endless");
    axis.minimumSpeed = members.integer("minimumSpeed");
    axis.maximumSpeed = members.integer("maximumSpeed");
    axis.softPosition = readLimits(members.object("softPosition"));
    axis.softSpeed = readLimits(members.object("softSpeed"));
    return axis;
}

PositioningState readPositioning(const Members &members) {
    return {readAxis(members.object("pan")), readAxis(members.object("tilt")), readAxis(members.object("zoom")),
            members.integer("fieldOfView")};
}

FocusState readFocus(const Members &members) {
    FocusState focus;
    readDrive(members, focus);
    focus.manualMode = members.flag("manualMode");
    focus.sharpPosition = members.integer("sharpPosition");
    focus.focusing = members.flag("focusing");
    return focus;
}

ZoomStepperState readZoomStepper(const Members &members) {
    ZoomStepperState zoom;
    readDrive(members, zoom);
    zoom.fieldOfView = members.integer("fieldOfView");
    zoom.magnification = members.integer("magnification");
    return zoom;
}

IrisState readIris(const Members &members) {
    IrisState iris;
    readDrive(members, iris);
    iris.automaticPosition = members.integer("automaticPosition");
    return iris;
}

DeviceState readDevice(const Members &members) {
    return {members.nullableText("model"), members.nullableText("firmware"), members.nullableText("hardware"),
            members.nullableText("serial")};
}

PresetState readPreset(const Members &members) {
    return {members.integer("number"), members.text("id"),      members.text("name"),
            members.integer("pan"),    members.integer("tilt"), members.integer("zoom")};
}

/** Targets of the services of a state. */
class Targets {
public:
    explicit Targets(const Members &state) : services_(state.object("services")) {}

    /** Calls a function with each target of a service, in the order of their numbers. */
    template <typename Function>
    void forEach(const std::string &service, Function function) const {
        if (!services_.has(service)) {
            return;
        }
        const Members targets = services_.object(service).object("targets");
        for (std::size_t i = 1; i <= targets.size(); ++i) {
            function(targets.object(service + "/" + std::to_string(i)));
        }
    }

    /** Reads the first target of a service; nothing without one. */
    template <typename Read>
    auto first(const std::string &service, Read read) const {
        std::optional<decltype(read(services_))> result;
        forEach(service, [&](const Members &target) {
            if (!result) {
                result = read(target);
            }
        });
        return result;
    }

    /** Reads an integer of each target of a service. */
    std::vector<std::int64_t> integers(const std::string &service, const std::string &key) const {
        std::vector<std::int64_t> values;
        forEach(service, [&](const Members &target) { values.push_back(target.integer(key)); });
        return values;
    }

private:
    Members services_;
};

std::vector<FaultState> readFaults(const Members &state, const std::string &key, const std::string &valueKey) {
    std::vector<FaultState> faults;
    for (std::size_t i = 0; i < state.list(key).size(); ++i) {
        const Members fault = state.element(key, i);
        const bool always = fault.value("times") == "always";
        faults.push_back({fault.text("service"), fault.text("operation"), fault.integer(valueKey),
                          always ? std::nullopt : std::optional<std::int64_t>(fault.integer("times"))});
    }
    return faults;
}

void readServices(const Members &state, CameraState &read) {
    state.forEachObject("services", [&](const std::string &name, const Members &service) {
        read.services.push_back({name, service.flag("up"), service.object("targets").size()});
    });
    const Targets targets(state);
    read.device = targets.first("device_information", readDevice);
    read.positioning = targets.first("positioning", readPositioning);
    read.lensFocus = targets.first("lens_focus", readFocus);
    read.focusStepper = targets.first("focus_stepper", readFocus);
    read.zoomStepper = targets.first("zoom_stepper", readZoomStepper);
    read.iris = targets.first("iris", readIris);
    read.manualExposure =
        targets.first("exposure", [](const Members &exposure) { return exposure.flag("manualMode"); });
    if (read.iris) {
        read.iris->manualMode = read.manualExposure.value_or(true);
    }
    read.inputs = targets.integers("alarm", "state");
    read.relays = targets.integers("relay", "state");
    read.temperatures = targets.integers("temperature", "temperature");
    targets.forEach("power", [&](const Members &power) {
        read.power.push_back({power.integer("powerState"), power.integer("voltageState")});
    });
    read.maximumPresets =
        targets.first("presets_tours", [](const Members &presets) { return presets.integer("maximumPresets"); });
    const auto presets = targets.first("presets_tours", [](const Members &tours) {
        std::vector<PresetState> all;
        for (std::size_t i = 0; i < tours.list("presets").size(); ++i) {
            all.push_back(readPreset(tours.element("presets", i)));
        }
        return all;
    });
    read.presets = presets.value_or(std::vector<PresetState>());
}

} // namespace

CameraState readCameraState(const json &state) {
    const Members members(state, "");
    CameraState read;
    read.name = members.text("camera");
    read.description = members.text("description");
    read.time = members.number("time");
    read.restarting = members.flag("rebooting");
    readServices(members, read);
    read.failures = readFaults(members, "failures", "status");
    read.delays = readFaults(members, "delays", "milliseconds");
    return read;
}

CameraState parseCameraState(std::string_view line) {
    const json answer = camera::parseLine(line);
    if (!answer.is_object() || answer.value("ok", json()) != json(true)) {
        throw CameraStateError(camera::mismatch("an answer with a state", answer));
    }
    return readCameraState(Members(answer, "").value("state"));
}

} // namespace panel
