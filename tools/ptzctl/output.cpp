// SPDX-License-Identifier: Apache-2.0
#include "output.h"

#include "failure.h"

namespace ptzctl {

void requireWritten(std::ostream &output) {
    if (!output.flush()) {
        throw snmp::Failure(snmp::Cause::BadResponse, "cannot write the output");
    }
}

} // namespace ptzctl
