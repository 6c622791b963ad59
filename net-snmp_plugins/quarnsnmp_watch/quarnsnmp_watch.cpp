// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The entry points of the module.
 */
#include <exception>
#include <string>

#include "handler_chains.h"
#include "net_snmp.h"
#include "observer.h"
#include "watch_socket.h"

extern "C" {
/** Starts the module. The agent calls it after the load. @return 0, or 1 if nothing will be reported */
int init_quarnsnmp_watch(void);
/** Ends the module. The agent calls it before the unload. @return 0 */
int deinit_quarnsnmp_watch(void);
}

int init_quarnsnmp_watch(void) {
    try {
        const std::string problem = watch::openSocket();
        if (!problem.empty()) {
            snmp_log(LOG_ERR, "quarnsnmp_watch: requests are not reported: %s\n", problem.c_str());
            return 1;
        }
    } catch (const std::exception &error) {
        snmp_log(LOG_ERR, "quarnsnmp_watch: requests are not reported: %s\n", error.what());
        return 1;
    }
    if (!watch::injectHandlers(watch::observe)) {
        snmp_log(LOG_ERR, "quarnsnmp_watch: requests for some objects are not reported\n");
    }
    return 0;
}

int deinit_quarnsnmp_watch(void) {
    watch::removeHandlers();
    watch::forgetSets();
    watch::closeSocket();
    return 0;
}
