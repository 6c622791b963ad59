// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Notifications of a camera and its agent, explained.
 */
#ifndef CLIENT_OBJECTS_NOTIFICATION_H
#define CLIENT_OBJECTS_NOTIFICATION_H

#include <string>
#include <vector>

#include "reading.h"
#include "varbind.h"

namespace ptz {

/** A notification that is known by its OID. */
struct KnownNotification {
    const char *oid;
    const char *name;   ///< of the notification, and of the object that it reports, if any
    const char *reason; ///< why it was sent; a clause without a full stop
};

/** A notification with its values resolved. */
struct Notification {
    std::string oid;                          ///< empty without one
    const KnownNotification *known = nullptr; ///< null for an unknown one
    std::vector<Reading> values;              ///< with a problem for a value of another type than the object's

    /** Returns the name, or for an unknown notification its OID. */
    std::string name() const;

    /** Tests whether a value is that of the object that the notification is named after. */
    bool isOwn(const Reading &value) const;
};

/** Resolves the varbinds of a notification. */
Notification notificationOf(const std::vector<snmp::Varbind> &varbinds);

} // namespace ptz

#endif
