// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Helpers for the tests of pan, tilt and zoom: a positioning service of plausible limits, and the texts of its calls as
 * the scripted core library records them.
 */
#ifndef QUARNSNMP_POSITIONING_TEST_H
#define QUARNSNMP_POSITIONING_TEST_H

#include "handler_requests.h"
#include "positioning_state.h"

using positioning::Axis;
using positioning::kPanAxis;
using positioning::kTiltAxis;
using positioning::kZoomAxis;

/** Functions of the service. */
namespace service {
inline const char *const kInit = "zorva_api_positioning_initiator_init";
inline const char *const kClearVelocityLimits = "zorva_api_positioning_clear_velocity_limits_send";
inline const char *const kGetDigitalZoom = "zorva_api_positioning_get_digital_zoom_enable_send";
inline const char *const kGetCameraPositions = "zorva_api_positioning_get_implementation_position_limits_send";
inline const char *const kGetCameraVelocities = "zorva_api_positioning_get_implementation_velocity_limits_send";
inline const char *const kGetMaxZoom = "zorva_api_positioning_get_max_optical_and_digital_zoom_send";
inline const char *const kGetPosition = "zorva_api_positioning_get_position_send";
inline const char *const kGetSoftPositions = "zorva_api_positioning_get_soft_position_limits_send";
inline const char *const kGetSoftVelocities = "zorva_api_positioning_get_soft_velocity_limits_send";
inline const char *const kGetTimeout = "zorva_api_positioning_get_velocity_command_timeout_send";
inline const char *const kMove = "zorva_api_positioning_move_to_position_with_speed_percentage_send";
inline const char *const kSetSoftVelocities = "zorva_api_positioning_set_soft_velocity_limits_send";
inline const char *const kSetTimeout = "zorva_api_positioning_set_velocity_command_timeout_send";
inline const char *const kSetVelocity = "zorva_api_positioning_set_velocity_send";
inline const char *const kSetVelocityWithTimeout = "zorva_api_positioning_set_velocity_with_timeout_send";
} // namespace service

/** Calls as the scripted core library records them. */
namespace calls {

/** A call to the first target over the open connection. */
inline std::string of(const char *function, const std::string &arguments) {
    return function + "(positioning, \"positioning/1\", "s + arguments + ")";
}

inline const std::string kClearVelocityLimits = of(service::kClearVelocityLimits, "1, 1, 1");
inline const std::string kGetDigitalZoom = of(service::kGetDigitalZoom, "&");
inline const std::string kGetCameraPositions = of(service::kGetCameraPositions, "&, &, &, &, &, &");
inline const std::string kGetCameraVelocities = of(service::kGetCameraVelocities, "&, &, &, &, &, &");
inline const std::string kGetMaxZoom = of(service::kGetMaxZoom, "&, &, &");
inline const std::string kGetPosition = of(service::kGetPosition, "&, &, &");
inline const std::string kGetSoftPositions = of(service::kGetSoftPositions, "&, &, &, &, &, &, &, &, &");
inline const std::string kGetSoftVelocities = of(service::kGetSoftVelocities, "&, &, &, &, &, &, &, &, &");
/** The limits that a move sets: those of pan and tilt end at the ceiling, the rest is as the service had it. */
std::string setSoftVelocities(int panMax, int tiltMax);
std::string setTimeout(std::uint32_t milliseconds);
std::string stop(int axis);
std::string move(int axis, int position, const std::string &fraction);
std::string run(int axis, int velocity, std::uint32_t timeout);

} // namespace calls

/** An axis value that names no axis. */
inline constexpr auto kNoAxis = static_cast<positioning::Axis>(3);

/** One axis of an answer with limits. */
struct Limits {
    int min;
    int max;
    bool enabled = true;
};

/** Makes the state of positioning that of a module that was just loaded. */
void forgetPositioning();

/** Upper velocity limits of the service. Each kind of move sets its own. */
struct Ceilings {
    int pan;
    int tilt;
};
inline constexpr Ceilings kMoveCeilings{160000, 80000};
inline constexpr Ceilings kRunCeilings{80000, 40000};
inline constexpr Ceilings kOtherCeilings{120000, 60000};

/**
 * The camera stands at pan 90.00 degrees, tilt -10.00 degrees and zoom 10x. It has different limits everywhere, so that
 * no two of them can be taken for each other.
 */
class PositioningTest : public ModuleTest {
protected:
    PositioningTest();
    ~PositioningTest() override;

    void SetUp() override;

    /** Brings the feature up, and forgets the calls and log lines of that. */
    static void connect();
    /** Brings the feature up without a service, and forgets the calls and log lines of that. */
    static void startWithoutService();

    static void position(int pan, int tilt, int zoom);
    static void softPositions(const Limits &pan, const Limits &tilt, const Limits &zoom);
    static void softZoom(const Limits &zoom);
    static void softVelocities(const Ceilings &ceilings);
    static void softVelocities(const Limits &pan, const Limits &tilt, const Limits &zoom);
    static void cameraVelocities(const Limits &pan, const Limits &tilt, const Limits &zoom);
    static void cameraPositions(const Limits &pan, const Limits &tilt, const Limits &zoom);
    static void digitalZoom(bool enabled);
    static void maxZoom(int optical, int digital, int combined);

    /** Makes a first GET, which may read the position, and clears the record. */
    static void use(std::string_view instance);
};

/** Positioning that is up and connected. */
class ConnectedPositioningTest : public PositioningTest {
protected:
    void SetUp() override {
        PositioningTest::SetUp();
        connect();
    }
};

#endif
