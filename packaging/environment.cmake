# SPDX-License-Identifier: Apache-2.0
# Run by cpack before it begins: the environment of the tools that it calls.

# The same build makes the same packages, octet for octet: every date in them is that of the release.
execute_process(COMMAND dpkg-parsechangelog -l ${CPACK_QUARNSNMP_CHANGELOG} --show-field Timestamp
  OUTPUT_VARIABLE release_time OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
set(ENV{SOURCE_DATE_EPOCH} ${release_time})

# dpkg-shlibdeps asks which package a library belongs to. The libraries of the other architecture are in the sysroot,
# and so is the database that knows them.
if(DEFINED CPACK_QUARNSNMP_SYSROOT)
  set(ENV{DPKG_ADMINDIR} ${CPACK_QUARNSNMP_SYSROOT}/var/lib/dpkg)
  set(ENV{DEB_HOST_ARCH} ${CPACK_DEBIAN_PACKAGE_ARCHITECTURE})
endif()
