// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Services of the device: its description, restart, inputs, outputs, power and temperature.
 */
#ifndef QUARNSNMP_CAMERA_DEVICE_H
#define QUARNSNMP_CAMERA_DEVICE_H

#include "service.h"

namespace camera {

/** Target of `alarm`: an input. */
struct AlarmInput {
    std::int32_t state = 0;

    static const Definition<AlarmInput> &definition();
};

/** Target of `device_information`. The meanings of the last five fields are undocumented. */
struct DeviceInformation {
    Text model;
    Text firmware;
    Text hardware;
    Text serial;
    Text text5;
    Text text6;
    Text text7;
    Text text8;
    std::uint8_t flag = 0;

    static const Definition<DeviceInformation> &definition();
};

/** Longest duration of a restart, in seconds. */
inline constexpr std::uint32_t kLongestReboot = 3600;

/** Target of `device_management`. */
struct DeviceManagement {
    std::uint32_t reboots = 0;
    std::uint32_t rebootSeconds = 5; ///< duration of a restart

    static const Definition<DeviceManagement> &definition();
};

/** Target of `power`. The numbers are service-specific. */
struct Power {
    std::uint8_t powerState = 0;
    std::uint8_t voltageState = 0;

    static const Definition<Power> &definition();
};

/** Configuration of a relay, with the names of its operations. The meanings are undocumented. */
struct RelayConfiguration {
    std::uint8_t c1 = 0; ///< 0 for a relay without configuration
    std::uint8_t c2 = 0;
    std::int32_t c3 = 0;
    std::uint8_t c4 = 0;
    std::int32_t c5 = 0;
    std::int32_t c6 = 0;
    std::int32_t c7 = 0;
};

/** Target of `relay`: an output. */
struct Relay {
    std::uint8_t state = 0; ///< bit 0: energised
    RelayConfiguration configuration;

    static const Definition<Relay> &definition();
};

/** Target of `temperature`. */
struct Temperature {
    std::int32_t temperature = 0; ///< in thousandths of a degree Celsius

    static const Definition<Temperature> &definition();
};

} // namespace camera

#endif
