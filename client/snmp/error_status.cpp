// SPDX-License-Identifier: Apache-2.0
#include "error_status.h"

#include <algorithm>
#include <array>

namespace snmp {

namespace {

struct ErrorRecord {
    long status;
    const char *name;
    const char *advice;
};

constexpr const char *kLocked = "this community or user lacks the permission; it is set in the agent's configuration";
constexpr const char *kAbsent = "the camera does not have this object, or hides it from this community or user";
constexpr const char *kWrongKind = "the camera expects another type of value; check that it implements these objects";
constexpr const char *kBadValue = "the camera does not accept this value; check it against the camera's limits";
constexpr const char *kTrouble = "the camera failed to do it; its log has the reason";

constexpr std::array<ErrorRecord, 18> kErrors = {{
    {kTooBig, "tooBig", "the answer exceeds the size of a message; ask for less"},
    {2, "noSuchName", kAbsent},
    {3, "badValue", kBadValue},
    {4, "readOnly", kLocked},
    {5, "genErr", kTrouble},
    {6, "noAccess", kLocked},
    {7, "wrongType", kWrongKind},
    {8, "wrongLength", kWrongKind},
    {9, "wrongEncoding", kWrongKind},
    {10, "wrongValue", kBadValue},
    {11, "noCreation", kAbsent},
    {12, "inconsistentValue", kBadValue},
    {13, "resourceUnavailable", kTrouble},
    {14, "commitFailed", kTrouble},
    {15, "undoFailed", kTrouble},
    {kAuthorizationError, "authorizationError", "the agent requires a higher security level or another user"},
    {17, "notWritable", "the object is read-only, or this community or user may not write it"},
    {18, "inconsistentName", kAbsent},
}};

} // namespace

ErrorDescription describeError(long status) {
    const auto *const found = std::find_if(kErrors.begin(), kErrors.end(),
                                           [&](const ErrorRecord &record) { return record.status == status; });
    if (found == kErrors.end()) {
        return {"error status " + std::to_string(status), "SNMP defines no such error"};
    }
    return {found->name, found->advice};
}

} // namespace snmp
