# SPDX-License-Identifier: Apache-2.0
# Cross-compiles for the camera, Linux on AArch64, with the sysroot created by scripts/aarch64-sysroot.sh.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
set(CMAKE_LIBRARY_ARCHITECTURE aarch64-linux-gnu)

set(QUARNSNMP_SYSROOT ${CMAKE_CURRENT_LIST_DIR}/../build/aarch64-sysroot CACHE PATH "Sysroot of the camera's system")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES QUARNSNMP_SYSROOT)
get_filename_component(CMAKE_SYSROOT ${QUARNSNMP_SYSROOT} ABSOLUTE)
if(NOT EXISTS ${CMAKE_SYSROOT}/contents)
  message(FATAL_ERROR "There is no sysroot in ${CMAKE_SYSROOT}; create it with scripts/aarch64-sysroot.sh")
endif()

# Emulator for the tests.
find_program(QUARNSNMP_EMULATOR qemu-aarch64-static)
mark_as_advanced(QUARNSNMP_EMULATOR)
if(QUARNSNMP_EMULATOR)
  set(CMAKE_CROSSCOMPILING_EMULATOR ${QUARNSNMP_EMULATOR} -L ${CMAKE_SYSROOT})
endif()

set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
