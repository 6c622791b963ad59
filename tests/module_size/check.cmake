# SPDX-License-Identifier: Apache-2.0
# Fails when the module, stripped as it is installed, is larger than LIMIT octets.
execute_process(COMMAND ${STRIP} -o ${STRIPPED} ${MODULE} COMMAND_ERROR_IS_FATAL ANY)
file(SIZE ${STRIPPED} size)
if(size GREATER LIMIT)
  message(FATAL_ERROR "The stripped module has ${size} octets; ${LIMIT} are allowed")
endif()
message(STATUS "The stripped module has ${size} octets of ${LIMIT}")
