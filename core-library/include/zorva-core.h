// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Interface of the camera's core library, `libzorva-core.so`.
 *
 * This header is the only declaration of the interface. The module calls it. The stand-in library, which drives the
 * simulated camera, and the scripted library of the unit tests implement it. Any library with the SONAME
 * `libzorva-core.so` and these symbols can replace them, so a change here is an ABI change.
 *
 * Conventions, unless a function states otherwise:
 *  - Every call returns a zorva_core_status: 0 on success, any other value on failure. zorva::core::statusToString()
 *    describes it. Outputs are undefined after a failure: initialise them before the call, and do not read them after
 *    a failed one.
 *  - A cookie is an opaque handle, created by an init call and released by the matching deinit call. It is never
 *    dereferenced.
 *  - A target identifies one instance of a service, as listed by getTargetIds(). It is a NUL-terminated string, owned
 *    by the caller, and used only during the call.
 *  - A flag is a uint8_t: 0 is off, any other value is on.
 *  - A text output (`char **`) is allocated by the library with malloc() and released by the caller with free(). It may
 *    be null.
 *  - Calls may come from two threads at a time. A call may block until its service responds, and fails when the service
 *    is gone.
 *
 * Units: "millidegrees" are thousandths of a degree; zoom positions in "deciX" are tenths of a magnification step;
 * velocities are per second.
 */
#ifndef ZORVA_CORE_H
#define ZORVA_CORE_H

#include <stdint.h>

#if defined(__GNUC__)
#define ZORVA_CORE_PRINTF(formatIndex, firstArgument) __attribute__((format(printf, formatIndex, firstArgument)))
#else
#define ZORVA_CORE_PRINTF(formatIndex, firstArgument)
#endif

/** Result of a call; 0 is success. */
typedef int32_t zorva_core_status;

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Connection and logging ---- */

/** Starts the library; required before any other call. */
zorva_core_status zorva_core_init(void);

/** Ends the use of the library started by zorva_core_init(). Open handles become invalid. */
zorva_core_status zorva_core_deinit(void);

/**
 * Opens a logging context.
 * @param name       name in the lines of this context; copied
 * @param logCookie  output: the handle, released with zorva_core_logging_deinit()
 */
zorva_core_status zorva_core_logging_init(const char *name, void **logCookie);

/** Closes a logging context. */
zorva_core_status zorva_core_logging_deinit(void *logCookie);

/**
 * Writes one log line.
 * @param logCookie  handle of the logging context; with a null or closed handle the line is dropped
 * @param level      syslog severity: 3 error, 5 notice, 6 info, 7 debug
 * @param format     printf format without a trailing newline, followed by the arguments
 */
void zorva_core_logging_log(void *logCookie, int level, const char *format, ...) ZORVA_CORE_PRINTF(3, 4);

/**
 * Opens the inter-process communication used by the service initiators.
 * @param logCookie  logging context for messages about the communication itself
 * @param reserved   null
 * @param ipcCookie  output: the handle, released with zorva_core_ipc_deinit()
 */
zorva_core_status zorva_core_ipc_initiator_init(void *logCookie, void *reserved, void **ipcCookie);

/** Closes the inter-process communication. */
zorva_core_status zorva_core_ipc_deinit(void *ipcCookie);

/* ---- Service initiators ---- */

/**
 * Declares the functions that open and close the client side of a service.
 *
 * `initiator_init` takes the handles from zorva_core_ipc_initiator_init() and zorva_core_logging_init(), and 0 and null
 * for the two reserved arguments. It writes the service's handle to `apiCookie`; `initiator_deinit` releases it.
 */
#define ZORVA_DECLARE_INITIATOR(service)                                                                               \
    zorva_core_status zorva_api_##service##_initiator_init(void *ipcCookie, void *logCookie, void **apiCookie,         \
                                                           int32_t reserved0, void *reserved1);                        \
    zorva_core_status zorva_api_##service##_initiator_deinit(void *apiCookie)

ZORVA_DECLARE_INITIATOR(alarm);
ZORVA_DECLARE_INITIATOR(device_information);
ZORVA_DECLARE_INITIATOR(device_management);
ZORVA_DECLARE_INITIATOR(exposure);
ZORVA_DECLARE_INITIATOR(focus_stepper);
ZORVA_DECLARE_INITIATOR(iris);
ZORVA_DECLARE_INITIATOR(lens_focus);
ZORVA_DECLARE_INITIATOR(positioning);
ZORVA_DECLARE_INITIATOR(power);
ZORVA_DECLARE_INITIATOR(presets_tours);
ZORVA_DECLARE_INITIATOR(relay);
ZORVA_DECLARE_INITIATOR(temperature);
ZORVA_DECLARE_INITIATOR(zoom_stepper);

/* ---- alarm: discrete inputs, one target per input ---- */

/** Gets the state of the input: 0 inactive, 1 active; other values are service-specific. */
zorva_core_status zorva_api_alarm_get_state_send(void *cookie, const char *target, int32_t *state);

/* ---- device_information ---- */

/**
 * Gets the properties that do not change while the camera runs.
 * @param t1    output: model name
 * @param t2    output: firmware version
 * @param t3    output: hardware version
 * @param t4    output: serial number
 * @param t5,t6,t7,t8,flag  outputs: further texts and a flag, vendor-specific
 */
zorva_core_status zorva_api_device_information_get_static_information_send(void *cookie, const char *target, char **t1,
                                                                           char **t2, char **t3, char **t4, char **t5,
                                                                           char **t6, char **t7, char **t8,
                                                                           uint8_t *flag);

/* ---- device_management ---- */

/** Restarts the camera. @param kind 2 is the normal restart */
zorva_core_status zorva_api_device_management_reboot_send(void *cookie, const char *target, int32_t kind);

/* ---- exposure: manual or automatic control of the iris ---- */

/** Gets the exposure mode: manual (on) or automatic (off). */
zorva_core_status zorva_api_exposure_get_manual_mode_enable_send(void *cookie, const char *target, uint8_t *manualMode);

/** Sets the exposure mode: manual (1) or automatic (0). */
zorva_core_status zorva_api_exposure_set_manual_mode_enable_send(void *cookie, const char *target, uint8_t enable);

/* ---- focus_stepper: focus with a stepper motor, positions in steps, speeds in steps per second ---- */

/** Gets the ranges of position and speed. */
zorva_core_status zorva_api_focus_stepper_get_limits_send(void *cookie, const char *target, int32_t *minPosition,
                                                          int32_t *maxPosition, int32_t *minSpeed, int32_t *maxSpeed);

/** Gets the focus mode: manual (on) or automatic (off). */
zorva_core_status zorva_api_focus_stepper_get_manual_mode_enable_send(void *cookie, const char *target,
                                                                      uint8_t *manualMode);

/** Gets the position. @param second output: a second position, vendor-specific */
zorva_core_status zorva_api_focus_stepper_get_position_send(void *cookie, const char *target, int32_t *current,
                                                            int32_t *second);

/** Sets the focus mode: manual (1) or automatic (0). */
zorva_core_status zorva_api_focus_stepper_set_manual_mode_enable_send(void *cookie, const char *target, uint8_t enable);

/** Starts a move to a position at a speed; returns before the move ends. */
zorva_core_status zorva_api_focus_stepper_set_position_send(void *cookie, const char *target, int32_t position,
                                                            int32_t speed);

/** Starts one short automatic focus run; returns before the run ends. */
zorva_core_status zorva_api_focus_stepper_start_quick_auto_focus_send(void *cookie, const char *target);

/* ---- iris: positions in device units ---- */

/** Gets the position and its range. */
zorva_core_status zorva_api_iris_get_position_send(void *cookie, const char *target, uint32_t *current, uint32_t *min,
                                                   uint32_t *max);

/** Starts a move to a position; returns before the move ends. */
zorva_core_status zorva_api_iris_set_position_send(void *cookie, const char *target, uint32_t position);

/** Moves or halts the iris. @param direction 0 or 1, one for each way @param run 1 moves, 0 halts */
zorva_core_status zorva_api_iris_set_velocity_send(void *cookie, const char *target, int32_t direction, int32_t run);

/* ---- lens_focus: focus with a direct-current motor, positions in device units ---- */

/** Starts one automatic focus run; returns before the run ends. */
zorva_core_status zorva_api_lens_focus_do_auto_focus_send(void *cookie, const char *target);

/** Gets the position and its range. */
zorva_core_status zorva_api_lens_focus_get_manual_focus_position_send(void *cookie, const char *target,
                                                                      int32_t *current, int32_t *min, int32_t *max);

/** Gets the focus mode: manual (on) or automatic (off). */
zorva_core_status zorva_api_lens_focus_get_manual_mode_enable_send(void *cookie, const char *target,
                                                                   uint8_t *manualMode);

/** Starts a move to a position; returns before the move ends. */
zorva_core_status zorva_api_lens_focus_set_manual_focus_position_send(void *cookie, const char *target,
                                                                      int32_t position);

/** Sets the focus mode: manual (1) or automatic (0). */
zorva_core_status zorva_api_lens_focus_set_manual_mode_enable_send(void *cookie, const char *target, uint8_t enable);

/** Moves or halts the focus. @param direction 0 far, 1 near @param run 1 moves, 0 halts */
zorva_core_status zorva_api_lens_focus_set_velocity_send(void *cookie, const char *target, int32_t direction,
                                                         int32_t run);

/* ---- positioning: pan and tilt in millidegrees (tilt positive upwards), zoom in deciX ---- */

/** Clears the soft velocity limits of the axes whose flag is on. */
zorva_core_status zorva_api_positioning_clear_velocity_limits_send(void *cookie, const char *target, uint8_t pan,
                                                                   uint8_t tilt, uint8_t zoom);

/** Gets the state of digital zoom: on when zooming continues beyond the optical range. */
zorva_core_status zorva_api_positioning_get_digital_zoom_enable_send(void *cookie, const char *target,
                                                                     uint8_t *isEnabled);

/** Gets the mechanical position limits. */
zorva_core_status zorva_api_positioning_get_implementation_position_limits_send(void *cookie, const char *target,
                                                                                int32_t *panMin, int32_t *panMax,
                                                                                int32_t *tiltMin, int32_t *tiltMax,
                                                                                int32_t *zoomMin, int32_t *zoomMax);

/** Gets the mechanical velocity limits, in millidegrees or deciX per second. */
zorva_core_status zorva_api_positioning_get_implementation_velocity_limits_send(void *cookie, const char *target,
                                                                                int32_t *panMin, int32_t *panMax,
                                                                                int32_t *tiltMin, int32_t *tiltMax,
                                                                                int32_t *zoomMin, int32_t *zoomMax);

/** Gets the upper ends of the optical, the digital and the combined zoom range. */
zorva_core_status zorva_api_positioning_get_max_optical_and_digital_zoom_send(void *cookie, const char *target,
                                                                              int32_t *opticalMax, int32_t *digitalMax,
                                                                              int32_t *combinedMax);

/** Gets the position of all axes. */
zorva_core_status zorva_api_positioning_get_position_send(void *cookie, const char *target, int32_t *pan, int32_t *tilt,
                                                          int32_t *zoom);

/** Gets the position limits set by the user; the flag of an axis is on while its limits are in force. */
zorva_core_status zorva_api_positioning_get_soft_position_limits_send(
    void *cookie, const char *target, uint8_t *panEnable, int32_t *panMin, int32_t *panMax, uint8_t *tiltEnable,
    int32_t *tiltMin, int32_t *tiltMax, uint8_t *zoomEnable, int32_t *zoomMin, int32_t *zoomMax);

/** Gets the velocity limits set by the user; the flag of an axis is on while its limits are in force. */
zorva_core_status zorva_api_positioning_get_soft_velocity_limits_send(
    void *cookie, const char *target, uint8_t *panEnable, int32_t *panMin, int32_t *panMax, uint8_t *tiltEnable,
    int32_t *tiltMin, int32_t *tiltMax, uint8_t *zoomEnable, int32_t *zoomMin, int32_t *zoomMax);

/** Gets the time-out of a velocity command that is not renewed; 0 is unlimited. */
zorva_core_status zorva_api_positioning_get_velocity_command_timeout_send(void *cookie, const char *target,
                                                                          uint32_t *milliseconds);

/**
 * Starts a move of the enabled axes to a position; returns before the move ends.
 * @param panFraction,tiltFraction,zoomFraction  speed as a fraction of the axis's velocity range, 0.0 to 1.0; a higher
 *                                               value selects full speed
 * @param priority  lower numbers are more urgent; the service decides between clients
 */
zorva_core_status zorva_api_positioning_move_to_position_with_speed_percentage_send(
    void *cookie, const char *target, uint8_t panEnable, int32_t pan, double panFraction, uint8_t tiltEnable,
    int32_t tilt, double tiltFraction, uint8_t zoomEnable, int32_t zoom, double zoomFraction, int32_t priority);

/** Sets the velocity limits of the enabled axes. */
zorva_core_status zorva_api_positioning_set_soft_velocity_limits_send(void *cookie, const char *target,
                                                                      uint8_t panEnable, int32_t panMin, int32_t panMax,
                                                                      uint8_t tiltEnable, int32_t tiltMin,
                                                                      int32_t tiltMax, uint8_t zoomEnable,
                                                                      int32_t zoomMin, int32_t zoomMax);

/** Sets the time-out of a velocity command that is not renewed, for all axes; 0 is unlimited. */
zorva_core_status zorva_api_positioning_set_velocity_command_timeout_send(void *cookie, const char *target,
                                                                          uint32_t milliseconds);

/** Moves the enabled axes at a velocity (0 halts) until the velocity command time-out expires. */
zorva_core_status zorva_api_positioning_set_velocity_send(void *cookie, const char *target, uint8_t panEnable,
                                                          int32_t pan, uint8_t tiltEnable, int32_t tilt,
                                                          uint8_t zoomEnable, int32_t zoom, int32_t priority);

/** Like set_velocity, with a time-out for this command; 0xFFFFFFFF is unlimited. */
zorva_core_status zorva_api_positioning_set_velocity_with_timeout_send(void *cookie, const char *target,
                                                                       uint8_t panEnable, int32_t pan,
                                                                       uint8_t tiltEnable, int32_t tilt,
                                                                       uint8_t zoomEnable, int32_t zoom,
                                                                       int32_t priority, uint32_t timeoutMilliseconds);

/* ---- power ---- */

/** Gets the state of the power supply; the values are service-specific. */
zorva_core_status zorva_api_power_get_power_state_send(void *cookie, const char *target, uint8_t *state);

/** Gets the state of the supply voltage; the values are service-specific. */
zorva_core_status zorva_api_power_get_voltage_state_send(void *cookie, const char *target, uint8_t *state);

/* ---- presets_tours ---- */

/** Gets the maximum number of presets. */
zorva_core_status zorva_api_presets_tours_get_max_presets_send(void *cookie, const char *target, uint32_t *maxPresets);

/** Finds a preset by its number. @param presetId output: its identifier, empty when the preset does not exist */
zorva_core_status zorva_api_presets_tours_get_preset_id_for_quarnapi_id_send(void *cookie, const char *target,
                                                                             int32_t number, char **presetId);

/** Starts a move to a preset. @param speed fraction, 1.0 is full speed @param flag 1 */
zorva_core_status zorva_api_presets_tours_move_to_preset_send(void *cookie, const char *target, const char *presetId,
                                                              double speed, int32_t priority, int32_t flag);

/** Stores the current position as a preset with an identifier, a name and a number. @param flag 1 */
zorva_core_status zorva_api_presets_tours_set_preset_with_current_position_send(void *cookie, const char *target,
                                                                                const char *presetId, const char *name,
                                                                                int32_t number, int32_t flag);

/* ---- relay: outputs, one target per relay ---- */

/** Gets the configuration. @param c1 output: 0 until the relay is configured; the other fields are vendor-specific */
zorva_core_status zorva_api_relay_get_configuration_send(void *cookie, const char *target, uint8_t *c1, uint8_t *c2,
                                                         int32_t *c3, uint8_t *c4, int32_t *c5, int32_t *c6,
                                                         int32_t *c7);

/** Gets the state: bit 0 is on while the relay is energised. */
zorva_core_status zorva_api_relay_get_state_send(void *cookie, const char *target, uint8_t *state);

/** Sets the configuration; the fields are those of zorva_api_relay_get_configuration_send(). */
zorva_core_status zorva_api_relay_set_configuration_send(void *cookie, const char *target, uint8_t c1, uint8_t c2,
                                                         int32_t c3, uint8_t c4, int32_t c5, int32_t c6, int32_t c7);

/** Switches the relay. */
zorva_core_status zorva_api_relay_set_state_send(void *cookie, const char *target, uint8_t state);

/* ---- temperature ---- */

/** Gets the temperature in thousandths of a degree Celsius. */
zorva_core_status zorva_api_temperature_get_temperature_send(void *cookie, const char *target,
                                                             int32_t *thousandthsOfDegree);

/* ---- zoom_stepper: zoom with a stepper motor, positions in steps, speeds in steps per second ---- */

/** Gets the ranges of position and speed. */
zorva_core_status zorva_api_zoom_stepper_get_limits_send(void *cookie, const char *target, int32_t *minPosition,
                                                         int32_t *maxPosition, int32_t *minSpeed, int32_t *maxSpeed);

/** Gets the position. */
zorva_core_status zorva_api_zoom_stepper_get_position_send(void *cookie, const char *target, int32_t *current);

/** Starts a move to a position at a speed; returns before the move ends. */
zorva_core_status zorva_api_zoom_stepper_set_position_send(void *cookie, const char *target, int32_t position,
                                                           int32_t speed);

#undef ZORVA_DECLARE_INITIATOR

#ifdef __cplusplus
} // extern "C"

#include <string>
#include <vector>

namespace zorva {
namespace core {

/**
 * Lists the running instances of a service.
 * @param serviceName  name of the service, such as "alarm"
 * @param targetIds    output: the identifiers are appended
 * @return false when the query fails; true otherwise, even if the service has no instances
 */
bool getTargetIds(const char *serviceName, std::vector<std::string> &targetIds);

/** Describes a status. Never returns null; the library owns the string, which stays valid. */
const char *statusToString(zorva_core_status status);

} // namespace core
} // namespace zorva
#endif

#endif
