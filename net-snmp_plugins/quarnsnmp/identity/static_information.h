// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * What the camera says about itself once, for the two features that publish it.
 */
#ifndef QUARNSNMP_STATIC_INFORMATION_H
#define QUARNSNMP_STATIC_INFORMATION_H

#include <string>

/** Texts of the device-information service; a text that the service leaves out is empty. */
struct StaticInformation {
    std::string modelName;
    std::string firmwareVersion;
    std::string hardwareVersion;
    std::string serialNumber;
};

/**
 * Finds the device-information service, reads the static information and closes the service again.
 * @param function     name of the calling Init function, for the log
 * @param information  output; untouched on failure
 * @return whether the information was read; each failure is logged
 */
bool ReadStaticInformation(const char *function, void *ipcCookie, StaticInformation &information);

#endif
