// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The headers of the agent library, in the order that they need.
 */
#ifndef QUARNSNMP_NET_SNMP_H
#define QUARNSNMP_NET_SNMP_H

// clang-format off
#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>
#include <net-snmp/agent/net-snmp-agent-includes.h>
// clang-format on

#endif
