// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The requests of all services, each as an inline function `watched::zorva_api_<service>_<operation>` with the
 * parameters of the library's own. The module calls no request in any other way: this is where it notices services that
 * hang. Always inline, because some calls have so many arguments that passing them twice costs more than all the rest.
 */
#ifndef QUARNSNMP_SERVICE_CALLS_H
#define QUARNSNMP_SERVICE_CALLS_H

#include "service_health.h"

namespace watched {

#define ZORVA_CALL(service, operation, parameters, ...)                                                                \
    [[gnu::always_inline]] inline zorva_core_status zorva_api_##service##_##operation parameters {                     \
        const CallStart start = BeginCall(service_health::service);                                                    \
        return start.held ? start.status                                                                               \
                          : EndCall(service_health::service, start, ::zorva_api_##service##_##operation(__VA_ARGS__)); \
    }
#include "service_calls.def"

} // namespace watched

#endif
