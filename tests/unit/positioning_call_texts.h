// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The service's calls as operators know them from the log of failures, blanks included.
 */
#ifndef QUARNSNMP_POSITIONING_CALL_TEXTS_H
#define QUARNSNMP_POSITIONING_CALL_TEXTS_H

#define QUARNSNMP_TARGET "(gApiCookie, gPositionings[kDefaultIndex].c_str(), "
#define QUARNSNMP_SPACED_TARGET "( gApiCookie, gPositionings[kDefaultIndex].c_str(), "
#define QUARNSNMP_RUN_ARGUMENTS                                                                                        \
    ", isTiltEnabled, tiltFuzzSpeed, isZoomEnabled, zoomFuzzSpeed, kPositioningPriorityLow, "

namespace texts {

inline const char *const kGetSoftPositions =
    "zorva_api_positioning_get_soft_position_limits_send" QUARNSNMP_TARGET
    "&ptzEnablePanEnable, &ptzPositionLimitsPanMinMillidegrees, &ptzPositionLimitsPanMaxMillidegrees, "
    "&ptzEnableTiltEnable, &ptzPositionLimitsTiltMinMillidegrees, &ptzPositionLimitsTiltMaxMillidegrees, "
    "&ptzEnableZoomEnable, &ptzPositionLimitsZoomMinDeciX, &ptzPositionLimitsZoomMaxDeciX)";
inline const char *const kGetDigitalZoom =
    "zorva_api_positioning_get_digital_zoom_enable_send" QUARNSNMP_TARGET "&isDigitalZoomEnabled)";
inline const char *const kGetMaxZoom =
    "zorva_api_positioning_get_max_optical_and_digital_zoom_send" QUARNSNMP_SPACED_TARGET
    "&ptzPositionLimitsZoomMaxDeciX, &ptzPositionLimitsZoomDigitalMaxDeciX, &ptzPositionLimitsZoomCombinedMaxDeciX)";
inline const char *const kGetSoftVelocities =
    "zorva_api_positioning_get_soft_velocity_limits_send" QUARNSNMP_SPACED_TARGET
    "&ptzEnablePanEnable, &ptz_velocity_limits_pan_min_millidegrees, &ptz_velocity_limits_pan_max_millidegrees, "
    "&ptzEnableTiltEnable, &ptz_velocity_limits_tilt_min_millidegrees, &ptz_velocity_limits_tilt_max_millidegrees, "
    "&ptzEnableZoomEnable, &ptz_velocity_limits_zoom_min_deciX, &ptz_velocity_limits_zoom_max_deciX)";
inline const char *const kSetSoftVelocities =
    "zorva_api_positioning_set_soft_velocity_limits_send" QUARNSNMP_TARGET
    "1, ptz_velocity_limits_pan_min_millidegrees, ptz_velocity_limits_pan_max_millidegrees, "
    "1, ptz_velocity_limits_tilt_min_millidegrees, ptz_velocity_limits_tilt_max_millidegrees, "
    "1, ptz_velocity_limits_zoom_min_deciX, ptz_velocity_limits_zoom_max_deciX)";
inline const char *const kGetCameraVelocities =
    "zorva_api_positioning_get_implementation_velocity_limits_send" QUARNSNMP_SPACED_TARGET
    "&ptz_velocity_limits_pan_min_millidegrees, &ptz_velocity_limits_pan_max_millidegrees, "
    "&ptz_velocity_limits_tilt_min_millidegrees, &ptz_velocity_limits_tilt_max_millidegrees, "
    "&ptz_velocity_limits_zoom_min_deciX, &ptz_velocity_limits_zoom_max_deciX)";
inline const char *const kSetVelocity = "zorva_api_positioning_set_velocity_send" QUARNSNMP_TARGET
                                        "isPanEnabled, 0, isTiltEnabled, 0, isZoomEnabled, 0, kPositioningPriorityLow)";
inline const char *const kGetPosition = "zorva_api_positioning_get_position_send" QUARNSNMP_TARGET
                                        "&panFUZZMillidegrees, &tiltFUZZMillidegrees, &zoomFUZZDeciX)";
inline const char *const kClearVelocityLimits =
    "zorva_api_positioning_clear_velocity_limits_send" QUARNSNMP_TARGET "1, 1, 1)";
inline const char *const kMove =
    "zorva_api_positioning_move_to_position_with_speed_percentage_send" QUARNSNMP_SPACED_TARGET
    "isPanEnabled, newFUZZPanPosition, panSpeedPercentage, isTiltEnabled, newFUZZTiltPosition, tiltSpeedPercentage, "
    "isZoomEnabled, newFUZZZoomPosition, zoomSpeedPercentage, kPositioningPriorityLow)";
inline const char *const kRun = "zorva_api_positioning_set_velocity_with_timeout_send" QUARNSNMP_SPACED_TARGET
                                "isPanEnabled, panFuzzSpeed" QUARNSNMP_RUN_ARGUMENTS "timeout)";
inline const char *const kRunForEver = "zorva_api_positioning_set_velocity_with_timeout_send" QUARNSNMP_SPACED_TARGET
                                       "isPanEnabled, panFuzzSpeed " QUARNSNMP_RUN_ARGUMENTS "0xFFFFFFFF)";

inline const char *const kGetTimeout =
    "zorva_api_positioning_get_velocity_command_timeout_send" QUARNSNMP_TARGET "&gLastPanTimeout)";
inline const char *const kSetPanTimeout =
    "zorva_api_positioning_set_velocity_command_timeout_send" QUARNSNMP_TARGET "newPanTimeout)";
inline const char *const kSetTiltTimeout =
    "zorva_api_positioning_set_velocity_command_timeout_send" QUARNSNMP_TARGET "newTiltTimeout)";
inline const char *const kSetZoomTimeout =
    "zorva_api_positioning_set_velocity_command_timeout_send" QUARNSNMP_TARGET "newZoomTimeout)";
inline const char *const kGetCameraPositions =
    "zorva_api_positioning_get_implementation_position_limits_send" QUARNSNMP_SPACED_TARGET
    "&ptzPositionLimitsPanMinMillidegrees, &ptzPositionLimitsPanMaxMillidegrees, "
    "&ptzPositionLimitsTiltMinMillidegrees, &ptzPositionLimitsTiltMaxMillidegrees, "
    "&ptzPositionLimitsZoomMinDeciX, &ptzPositionLimitsZoomMaxDeciX)";

} // namespace texts

#undef QUARNSNMP_TARGET
#undef QUARNSNMP_SPACED_TARGET
#undef QUARNSNMP_RUN_ARGUMENTS

#endif
