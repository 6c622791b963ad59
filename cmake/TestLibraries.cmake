# SPDX-License-Identifier: Apache-2.0
# Libraries that tests load into programs of the distribution.

# Sets a variable to the libraries that a program without sanitizers must load before a sanitized module, separated by
# colons: the runtime of the sanitizer, and the C++ library, whose throw function the runtime looks up at its start.
function(find_sanitizer_runtimes variable)
  set(letter_address a)
  set(letter_thread t)
  set(names "")
  set(paths "")
  if(NOT QUARNSNMP_SANITIZER STREQUAL "")
    set(name ${letter_${QUARNSNMP_SANITIZER}}san)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
      set(names libclang_rt.${name}-${CMAKE_SYSTEM_PROCESSOR}.so libstdc++.so.6)
    else()
      set(names lib${name}.so libstdc++.so.6)
    endif()
  endif()
  foreach(name IN LISTS names)
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${name}
                    OUTPUT_VARIABLE path OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    if(NOT IS_ABSOLUTE "${path}")
      message(FATAL_ERROR "The compiler lacks ${name}, which the agent needs for a sanitized module")
    endif()
    file(REAL_PATH "${path}" path)
    list(APPEND paths "${path}")
  endforeach()
  list(JOIN paths ":" paths)
  set(${variable} "${paths}" PARENT_SCOPE)
endfunction()

# Sets a variable to the library that speeds up the clock of a program, or to nothing on a machine without it.
function(find_faketime variable)
  find_library(FAKETIME_LIBRARY NAMES libfaketimeMT.so.1 PATH_SUFFIXES faketime)
  mark_as_advanced(FAKETIME_LIBRARY)
  if(FAKETIME_LIBRARY)
    set(${variable} "${FAKETIME_LIBRARY}" PARENT_SCOPE)
  else()
    set(${variable} "" PARENT_SCOPE)
  endif()
endfunction()
