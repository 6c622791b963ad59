// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Reception of traps and informs.
 */
#ifndef CLIENT_SNMP_NOTIFICATION_RECEIVER_H
#define CLIENT_SNMP_NOTIFICATION_RECEIVER_H

#include <exception>
#include <functional>
#include <string>
#include <vector>

#include "netsnmp_types.h"
#include "security_level.h"
#include "varbind.h"

namespace snmp {

/** A notification as received. */
struct Received {
    std::string from; ///< address of the sender
    SecurityLevel level;
    std::vector<Varbind> varbinds;
};

/** Listens at an address and answers informs. A process has one receiver at a time. */
class NotificationReceiver {
public:
    /** Takes a notification. @return false to leave an inform without an answer */
    using Handler = std::function<bool(const Received &notification)>;

    /**
     * @param program  name of the program, as startReceiver() has it
     * @param address  ADDRESS:PORT, or another transport address of the SNMP library
     * @throws Failure when the address is not available
     */
    NotificationReceiver(const char *program, const std::string &address, Handler handler);

    /**
     * Waits for messages and passes those that arrive to the handler.
     * @param wakeUp  a descriptor that ends the wait when it becomes readable
     * @return whether the wait ended otherwise
     * @throws what the handler throws; it leaves an inform without an answer, too
     */
    bool wait(int wakeUp);

private:
    struct Closer {
        void operator()(netsnmp_session *session) const {
            snmp_close(session);
        }
    };

    static int receive(int operation, netsnmp_session *session, int request, netsnmp_pdu *pdu, void *data) noexcept;
    std::string senderOf(const netsnmp_pdu &pdu) const;

    Handler handler_;
    std::exception_ptr thrown_;              ///< by the handler, within a call of the library
    netsnmp_transport *transport_ = nullptr; ///< owned by the session
    std::unique_ptr<netsnmp_session, Closer> session_;
};

} // namespace snmp

#endif
