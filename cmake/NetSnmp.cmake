# SPDX-License-Identifier: Apache-2.0
# Net-SNMP as imported targets: netsnmp::agent for loadable modules, netsnmp::client for clients.
find_path(NETSNMP_INCLUDE_DIR net-snmp/net-snmp-config.h)
find_library(NETSNMP_LIBRARY netsnmp)
find_library(NETSNMP_AGENT_LIBRARY netsnmpagent)
include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(NetSnmp REQUIRED_VARS NETSNMP_LIBRARY NETSNMP_AGENT_LIBRARY NETSNMP_INCLUDE_DIR)
if(NOT NetSnmp_FOUND)
  message(FATAL_ERROR "The Net-SNMP development files are missing; on Debian: apt-get install libsnmp-dev")
endif()
mark_as_advanced(NETSNMP_INCLUDE_DIR NETSNMP_LIBRARY NETSNMP_AGENT_LIBRARY)

add_library(netsnmp::client UNKNOWN IMPORTED)
set_target_properties(netsnmp::client PROPERTIES
  IMPORTED_LOCATION ${NETSNMP_LIBRARY}
  INTERFACE_INCLUDE_DIRECTORIES ${NETSNMP_INCLUDE_DIR})
add_library(netsnmp::agent UNKNOWN IMPORTED)
set_target_properties(netsnmp::agent PROPERTIES
  IMPORTED_LOCATION ${NETSNMP_AGENT_LIBRARY}
  INTERFACE_LINK_LIBRARIES netsnmp::client)
