# SPDX-License-Identifier: Apache-2.0
# Run by cpack before it packs the files. Compresses manuals and changelogs as Debian requires; `cmake --install` leaves
# them uncompressed.
file(GLOB_RECURSE texts
  ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/*/usr/share/man/*.[1-8]
  ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/*/usr/share/doc/*/changelog)
if(NOT texts)
  message(FATAL_ERROR "there is no changelog in ${CPACK_TEMPORARY_INSTALL_DIRECTORY}")
endif()
execute_process(COMMAND gzip -9 --no-name --force ${texts} COMMAND_ERROR_IS_FATAL ANY)
