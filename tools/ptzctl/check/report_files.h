// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Reports about one or several cameras as files, made from the JSON of each camera. The texts in it may hold anything
 * that a camera sends.
 */
#ifndef PTZCTL_CHECK_REPORT_FILES_H
#define PTZCTL_CHECK_REPORT_FILES_H

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace ptzctl::check {

/** Returns a text of a report in JSON, or an empty one. */
std::string textAt(const nlohmann::ordered_json &object, const char *key);

/** The JSON of a camera: that of jsonOf(), or with `error` for a camera without a report. */
using CameraReports = std::vector<nlohmann::ordered_json>;

/** Makes a JUnit file with a test suite for each camera and a test case for each rule. */
std::string junitOf(const CameraReports &reports);

/** Makes an HTML page with a conformance table for each camera, without scripts and without other files. */
std::string htmlOf(const CameraReports &reports);

/** Writes a file. @throws snmp::Failure with Cause::BadResponse */
void writeFile(const std::string &path, const std::string &text);

} // namespace ptzctl::check

#endif
