// SPDX-License-Identifier: Apache-2.0
#include "handler_chains.h"

#include <array>
#include <cstring>

#include <net-snmp/agent/agent_callbacks.h>

namespace watch {

namespace {

constexpr const char *kHandlerName = "quarnsnmp_watch";

constexpr std::array<oid, 7> kNtcipSubtree = {1, 3, 6, 1, 4, 1, 1206};
constexpr std::array<oid, 7> kVendorSubtree = {1, 3, 6, 1, 4, 1, 99999};

Netsnmp_Node_Handler *gHandler = nullptr;

bool isOfCamera(const netsnmp_handler_registration &registration) {
    const auto below = [&registration](const auto &root) {
        return snmp_oidtree_compare(root.data(), root.size(), registration.rootoid, registration.rootoid_len) == 0 &&
               registration.rootoid_len >= root.size();
    };
    return registration.rootoid != nullptr && (below(kNtcipSubtree) || below(kVendorSubtree));
}

bool isOurs(const netsnmp_mib_handler &handler) {
    return handler.handler_name != nullptr && std::strcmp(handler.handler_name, kHandlerName) == 0;
}

netsnmp_mib_handler *findHandler(const netsnmp_handler_registration &registration) {
    netsnmp_mib_handler *handler = registration.handler;
    while (handler != nullptr && !isOurs(*handler)) {
        handler = handler->next;
    }
    return handler;
}

bool inject(netsnmp_handler_registration &registration) {
    if (!isOfCamera(registration) || findHandler(registration) != nullptr) {
        return true;
    }
    netsnmp_mib_handler *handler = netsnmp_create_handler(kHandlerName, gHandler);
    if (handler == nullptr) {
        return false;
    }
    if (netsnmp_inject_handler(&registration, handler) != SNMPERR_SUCCESS) {
        netsnmp_handler_free(handler);
        return false;
    }
    return true;
}

void remove(netsnmp_handler_registration &registration) {
    netsnmp_mib_handler *handler = findHandler(registration);
    if (handler == nullptr) {
        return;
    }
    if (handler->prev != nullptr) {
        handler->prev->next = handler->next;
    } else {
        registration.handler = handler->next;
    }
    if (handler->next != nullptr) {
        handler->next->prev = handler->prev;
    }
    handler->next = nullptr; // netsnmp_handler_free() frees what follows, too.
    handler->prev = nullptr;
    netsnmp_handler_free(handler);
}

/**
 * Calls a function with each registration of the agent. The agent splits a subtree when another one is registered
 * within, and each part has its own copy of the registration and its handlers. So they are looked up in the agent's
 * registry, and none is remembered here.
 */
template <typename Function>
void forEachRegistration(const Function &function) {
    for (const subtree_context_cache *context = get_top_context_cache(); context != nullptr; context = context->next) {
        for (const netsnmp_subtree *sibling = context->first_subtree; sibling != nullptr; sibling = sibling->next) {
            for (const netsnmp_subtree *subtree = sibling; subtree != nullptr; subtree = subtree->children) {
                if (subtree->reginfo != nullptr) {
                    function(*subtree->reginfo);
                }
            }
        }
    }
}

/** The agent's callback for a new registration. */
int onRegistration(int /*major*/, int /*minor*/, void *arguments, void * /*data*/) {
    const auto *parameters = static_cast<const register_parameters *>(arguments);
    if (parameters != nullptr && parameters->reginfo != nullptr) {
        inject(*parameters->reginfo);
    }
    return SNMPERR_SUCCESS;
}

} // namespace

bool injectHandlers(Netsnmp_Node_Handler *handler) noexcept {
    gHandler = handler;
    bool injected = true;
    forEachRegistration(
        [&injected](netsnmp_handler_registration &registration) { injected = inject(registration) && injected; });
    return snmp_register_callback(SNMP_CALLBACK_APPLICATION, SNMPD_CALLBACK_REGISTER_OID, onRegistration, nullptr) ==
               SNMPERR_SUCCESS &&
           injected;
}

void removeHandlers() noexcept {
    snmp_unregister_callback(SNMP_CALLBACK_APPLICATION, SNMPD_CALLBACK_REGISTER_OID, onRegistration, nullptr, 0);
    forEachRegistration(remove);
}

} // namespace watch
