// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Static information of the camera, for the two features that publish it.
 */
#ifndef QUARNSNMP_STATIC_INFORMATION_H
#define QUARNSNMP_STATIC_INFORMATION_H

#include <string>

/** Texts of the device-information service. Missing texts are empty. */
struct StaticInformation {
    std::string modelName;
    std::string firmwareVersion;
    std::string hardwareVersion;
    std::string serialNumber;
};

/**
 * Opens the device-information service, reads the static information and closes the service. Failures are logged.
 * @param function     name of the calling Init function, for the log
 * @param information  output; unchanged after a failure
 * @return true if the information was read
 */
bool ReadStaticInformation(const char *function, void *ipcCookie, StaticInformation &information);

#endif
