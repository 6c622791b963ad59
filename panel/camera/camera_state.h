// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * State of the simulated camera, from its answer to the control command `state`.
 */
#ifndef QUARNSNMP_PANEL_CAMERA_STATE_H
#define QUARNSNMP_PANEL_CAMERA_STATE_H

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

namespace panel {

/** Error in an answer of the camera. what() has the path of the member and the reason. */
class CameraStateError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/** Drive or axis; positions in the units of its service, velocities per second. */
struct DriveState {
    std::int64_t position = 0;
    std::int64_t velocity = 0;
    std::optional<std::int64_t> target; ///< end of the present move
    bool moving = false;
    std::int64_t minimum = 0;
    std::int64_t maximum = 0;
};

/** Limits of the user. */
struct LimitState {
    bool enabled = false;
    std::int64_t minimum = 0;
    std::int64_t maximum = 0;
};

/** Axis of pan or tilt in millidegrees, or of zoom in deciX. */
struct AxisState : DriveState {
    bool endless = false;
    std::int64_t minimumSpeed = 0;
    std::int64_t maximumSpeed = 0;
    LimitState softPosition;
    LimitState softSpeed;
};

/** First target of `positioning`. */
struct PositioningState {
    AxisState pan;
    AxisState tilt;
    AxisState zoom;
    std::int64_t fieldOfView = 0; ///< horizontal, at a magnification of 1, in millidegrees
};

/** First target of `lens_focus` or `focus_stepper`. */
struct FocusState : DriveState {
    bool manualMode = false;
    std::int64_t sharpPosition = 0;
    bool focusing = false; ///< true during an automatic focus run
};

/** First target of `iris`. */
struct IrisState : DriveState {
    std::int64_t automaticPosition = 0; ///< position for a normal brightness
    bool manualMode = true;             ///< false while the exposure controls the iris
};

/** First target of `zoom_stepper`. */
struct ZoomStepperState : DriveState {
    std::int64_t fieldOfView = 0;   ///< horizontal, at `minimum`, in millidegrees
    std::int64_t magnification = 0; ///< at `maximum`, in deciX
};

/** Target of `power`. */
struct PowerState {
    std::int64_t powerState = 0;
    std::int64_t voltageState = 0;
};

/** First target of `device_information`; a text is empty when the camera reports none. */
struct DeviceState {
    std::string model;
    std::string firmware;
    std::string hardware;
    std::string serial;
};

/** Preset of the first target of `presets_tours`. */
struct PresetState {
    std::int64_t number = 0;
    std::string id;
    std::string name;
    std::int64_t pan = 0;  ///< in millidegrees
    std::int64_t tilt = 0; ///< in millidegrees
    std::int64_t zoom = 0; ///< in deciX
};

/** Service of the camera. */
struct ServiceState {
    std::string name;
    bool up = false;
    std::size_t targets = 0;
};

/** Failure or delay of an operation. */
struct FaultState {
    std::string service;
    std::string operation;
    std::int64_t value = 0;            ///< status of a failure, or milliseconds of a delay
    std::optional<std::int64_t> times; ///< remaining calls; nothing for all
};

/** State of the camera at one time. Members of services that the camera does not have are empty. */
struct CameraState {
    std::string name;
    std::string description;
    double time = 0.0;       ///< in seconds since the camera started
    bool restarting = false; ///< true during a restart
    std::vector<ServiceState> services;
    std::optional<DeviceState> device;
    std::optional<PositioningState> positioning;
    std::optional<FocusState> lensFocus;
    std::optional<FocusState> focusStepper;
    std::optional<ZoomStepperState> zoomStepper;
    std::optional<IrisState> iris;
    std::optional<bool> manualExposure;
    std::vector<std::int64_t> inputs;       ///< states of the targets of `alarm`
    std::vector<std::int64_t> relays;       ///< states of the targets of `relay`; bit 0 is 1 while energised
    std::vector<std::int64_t> temperatures; ///< in thousandths of a degree Celsius
    std::vector<PowerState> power;
    std::optional<std::int64_t> maximumPresets;
    std::vector<PresetState> presets;
    std::vector<FaultState> failures;
    std::vector<FaultState> delays;
};

/**
 * Parses an answer to the control command `state`: one line, with or without its newline.
 * @throws CameraStateError for anything else, and for a state in which a member is missing or has another type
 */
CameraState parseCameraState(std::string_view line);

/** Reads the member `state` of such an answer. @throws CameraStateError */
CameraState readCameraState(const nlohmann::json &state);

} // namespace panel

#endif
