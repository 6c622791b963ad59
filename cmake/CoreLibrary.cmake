# SPDX-License-Identifier: Apache-2.0
# Checks of the core library of a camera, and of the path on which the module finds it.
set(QUARNSNMP_CORE_RPATH "$ORIGIN" CACHE STRING
    "Directories in which the module looks for libzorva-core.so, separated by semicolons; $ORIGIN is the module's own")

# Sets a variable to a field of the ELF header of a file, or to nothing if the file has none. Usage:
# read_elf_field(VARIABLE FILE FIELD)
function(read_elf_field variable file field)
  execute_process(COMMAND ${CMAKE_COMMAND} -E env LC_ALL=C ${CMAKE_READELF} --wide --file-header --dynamic ${file}
                  OUTPUT_VARIABLE text ERROR_QUIET)
  if(text MATCHES "[ (]${field}[:)] +([^\n]+)\n")
    set(${variable} "${CMAKE_MATCH_1}" PARENT_SCOPE)
  else()
    set(${variable} "" PARENT_SCOPE)
  endif()
endfunction()

# Stops with a message if a file is no shared library for the processor of another library, or lacks the SONAME. Without
# this, the error would appear in the last step of the build, or only on the camera.
function(check_core_library file reference)
  if(NOT EXISTS "${file}")
    message(FATAL_ERROR "ZORVA_CORE_LIBRARY is '${file}', which does not exist")
  endif()
  if(NOT CMAKE_READELF)
    return()
  endif()
  read_elf_field(type "${file}" Type)
  if(NOT type MATCHES "^DYN")
    message(FATAL_ERROR "ZORVA_CORE_LIBRARY is '${file}', which is not a shared library")
  endif()
  read_elf_field(machine "${file}" Machine)
  read_elf_field(expected "${reference}" Machine)
  if(NOT expected STREQUAL "" AND NOT machine STREQUAL expected)
    message(FATAL_ERROR "ZORVA_CORE_LIBRARY is '${file}', a library for ${machine}, but this build is for ${expected}. "
                        "Use a library for ${expected}, or a build for ${machine}; the preset 'aarch64' builds for AArch64")
  endif()
  read_elf_field(soname "${file}" SONAME)
  if(NOT soname MATCHES "\\[libzorva-core\\.so\\]")
    message(FATAL_ERROR "ZORVA_CORE_LIBRARY is '${file}', which does not have the SONAME libzorva-core.so. "
                        "The module would look for it at this path on the camera")
  endif()
endfunction()

# Stops with a message if a directory of the module's search path depends on the agent's current directory, where others
# may be able to place a library.
function(check_core_rpath)
  foreach(directory IN LISTS QUARNSNMP_CORE_RPATH)
    if(NOT directory MATCHES "^(/|\\$ORIGIN$|\\$ORIGIN/)")
      message(FATAL_ERROR "QUARNSNMP_CORE_RPATH contains '${directory}'; expected an absolute path or $ORIGIN")
    endif()
  endforeach()
endfunction()
