# SPDX-License-Identifier: Apache-2.0
# Compiler options of all targets of this project, as the interface target `project-options`.
set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

add_library(project-options INTERFACE)
target_compile_options(project-options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wformat=2 -Wundef -Wcast-align -Wold-style-cast
  -Woverloaded-virtual -Wnon-virtual-dtor -Wimplicit-fallthrough -Werror)

# GCC marks static objects of inline functions and templates as STB_GNU_UNIQUE, which keeps a shared object mapped after
# dlclose(). A reloaded module would then find its old state and no poll thread.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(project-options INTERFACE -fno-gnu-unique)
elseif(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  # Replaces a much slower check of clang-tidy.
  target_compile_options(project-options INTERFACE -Wreserved-identifier)
endif()

if(QUARNSNMP_SANITIZER STREQUAL "address")
  set(sanitizer_options -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
elseif(QUARNSNMP_SANITIZER STREQUAL "thread")
  set(sanitizer_options -fsanitize=thread -fno-omit-frame-pointer)
elseif(NOT QUARNSNMP_SANITIZER STREQUAL "")
  message(FATAL_ERROR "QUARNSNMP_SANITIZER is '${QUARNSNMP_SANITIZER}'; expected '', 'address' or 'thread'")
endif()
if(QUARNSNMP_BUILD_FUZZERS)
  if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    message(FATAL_ERROR "QUARNSNMP_BUILD_FUZZERS requires clang, which includes libFuzzer; the compiler is "
                        "${CMAKE_CXX_COMPILER_ID}. Use the preset 'fuzz', or set CMAKE_CXX_COMPILER to clang++")
  endif()
  list(APPEND sanitizer_options -fsanitize=fuzzer-no-link)
endif()
target_compile_options(project-options INTERFACE ${sanitizer_options})
target_link_options(project-options INTERFACE ${sanitizer_options})
