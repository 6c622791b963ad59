// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The services around the device: what it is, its restart, its inputs and outputs, its power and temperature.
 */
#ifndef QUARNSNMP_CAMERA_DEVICE_H
#define QUARNSNMP_CAMERA_DEVICE_H

#include "service.h"

namespace camera {

/** A target of `alarm`: one input. */
struct AlarmInput {
    std::int32_t state = 0;

    static const Definition<AlarmInput> &definition();
};

/** A target of `device_information`; the library says of the last five only that they are there. */
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

/** Longest time that a restart can take, in seconds. */
inline constexpr std::uint32_t kLongestReboot = 3600;

/** A target of `device_management`. */
struct DeviceManagement {
    std::uint32_t reboots = 0;
    std::uint32_t rebootSeconds = 5; ///< how long the camera is away

    static const Definition<DeviceManagement> &definition();
};

/** A target of `power`; the numbers are the service's own. */
struct Power {
    std::uint8_t powerState = 0;
    std::uint8_t voltageState = 0;

    static const Definition<Power> &definition();
};

/** A relay's configuration, named as its operations name it: the meanings are the maker's own. */
struct RelayConfiguration {
    std::uint8_t c1 = 0; ///< 0 while the relay has not been set up
    std::uint8_t c2 = 0;
    std::int32_t c3 = 0;
    std::uint8_t c4 = 0;
    std::int32_t c5 = 0;
    std::int32_t c6 = 0;
    std::int32_t c7 = 0;
};

/** A target of `relay`: one output. */
struct Relay {
    std::uint8_t state = 0; ///< bit 0: energised
    RelayConfiguration configuration;

    static const Definition<Relay> &definition();
};

/** A target of `temperature`. */
struct Temperature {
    std::int32_t temperature = 0; ///< in thousandths of a degree Celsius

    static const Definition<Temperature> &definition();
};

} // namespace camera

#endif
