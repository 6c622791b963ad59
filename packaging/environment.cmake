# SPDX-License-Identifier: Apache-2.0
# Run by cpack at its start. Sets the environment of the tools that it runs.

# Reproducible packages: every date in them is that of the release.
execute_process(COMMAND dpkg-parsechangelog -l ${CPACK_QUARNSNMP_CHANGELOG} --show-field Timestamp
  OUTPUT_VARIABLE release_time OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
set(ENV{SOURCE_DATE_EPOCH} ${release_time})

# dpkg-shlibdeps looks up the packages of libraries. For another architecture, both the libraries and the package
# database are in the sysroot.
if(DEFINED CPACK_QUARNSNMP_SYSROOT)
  set(ENV{DPKG_ADMINDIR} ${CPACK_QUARNSNMP_SYSROOT}/var/lib/dpkg)
  set(ENV{DEB_HOST_ARCH} ${CPACK_DEBIAN_PACKAGE_ARCHITECTURE})
endif()
