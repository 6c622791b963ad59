# SPDX-License-Identifier: Apache-2.0
# Runs Prometheus' own tool. Usage: cmake -P promtool.cmake -- ARGUMENT...
# A machine without the tool prints a line that ctest counts as a skipped test.
set(arguments)
set(is_own FALSE)
math(EXPR last "${CMAKE_ARGC} - 1")
foreach(index RANGE ${last})
  if(is_own)
    list(APPEND arguments ${CMAKE_ARGV${index}})
  elseif(CMAKE_ARGV${index} STREQUAL "--")
    set(is_own TRUE)
  endif()
endforeach()

find_program(PROMTOOL promtool NO_CACHE)
if(NOT PROMTOOL)
  message("SKIPPED: promtool is missing; on Debian: apt-get install prometheus")
  return()
endif()
execute_process(COMMAND ${PROMTOOL} ${arguments} COMMAND_ERROR_IS_FATAL ANY)
