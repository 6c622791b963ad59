// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Execution of the rules.
 */
#ifndef PTZCTL_CHECK_RUNNER_H
#define PTZCTL_CHECK_RUNNER_H

#include "context.h"
#include "report.h"

namespace ptzctl::check {

/**
 * Runs the rules that the options select. Rules of further levels are left out, those excluded by name are reported as
 * skipped.
 * @param context  must outlive the report, which refers to its exchanges
 * @throws snmp::Failure with Cause::NoAnswer when the camera answers nothing at all
 */
CheckReport runRules(Context &context);

} // namespace ptzctl::check

#endif
