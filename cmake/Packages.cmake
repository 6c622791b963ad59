# SPDX-License-Identifier: Apache-2.0
# The Debian packages: after a build, `cpack` in its directory makes one for each component that was built.
# scripts/packages-build.sh makes those of both architectures.
include(GNUInstallDirs)

set(packaging ${CMAKE_CURRENT_SOURCE_DIR}/packaging)
set(package_of_module quarnsnmp)
set(package_of_tools quarnsnmp-tools)
set(package_of_simulator quarnsnmp-simulator)
set(CPACK_COMPONENTS_ALL module)
if(QUARNSNMP_BUILD_TOOLS)
  list(APPEND CPACK_COMPONENTS_ALL tools)
endif()
if(QUARNSNMP_BUILD_SIMULATOR)
  list(APPEND CPACK_COMPONENTS_ALL simulator)
endif()

# What has its place outside the prefix is for packages only: an installation below somebody's own prefix must not write
# to the system's directories.
install(FILES ${packaging}/quarnsnmp/quarnsnmp.conf
  DESTINATION /etc/snmp/snmpd.conf.d COMPONENT module EXCLUDE_FROM_ALL)
if(QUARNSNMP_BUILD_SIMULATOR)
  install(FILES ${packaging}/quarnsnmp-simulator/quarnsnmp-camera.service
    DESTINATION /lib/systemd/system COMPONENT simulator EXCLUDE_FROM_ALL)
endif()
install(DIRECTORY docs/ DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/quarnsnmp COMPONENT module EXCLUDE_FROM_ALL
  FILES_MATCHING PATTERN "*.md" PATTERN decisions EXCLUDE PATTERN releasing.md EXCLUDE)

# Description and dependencies beyond the shared libraries. The first line of a description is its summary; the project's
# own, which CPack would put in front, stays out.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_DEBIAN_MODULE_DESCRIPTION [[SNMP agent module for PTZ cameras
A module for the Net-SNMP agent of a pan/tilt/zoom camera. With it, a central
system monitors and drives the camera over SNMP: NTCIP 1205 (camera control)
and NTCIP 1201 (what the device is), identity, health, alarm inputs and
relays, and traps when something changes.

The module reaches the camera through its library libzorva-core.so. The
camera brings that; on other machines, the package quarnsnmp-simulator has a
stand-in for it and a simulated camera.

After the installation the agent is as it was: the module is enabled in
/etc/snmp/snmpd.conf.d/quarnsnmp.conf.]])
# A module belongs to its agent: it uses the agent's library in the agent's process.
set(CPACK_DEBIAN_MODULE_PACKAGE_DEPENDS "snmpd")
set(CPACK_DEBIAN_MODULE_PACKAGE_SUGGESTS "quarnsnmp-tools, quarnsnmp-simulator")
set(CPACK_DEBIAN_TOOLS_DESCRIPTION [[control PTZ cameras over SNMP from the command line
ptzctl moves cameras that have the SNMP objects of NTCIP 1205, reads what they
say about themselves, and explains what it reads and writes. It works with
several cameras at a time, in SNMPv2c and SNMPv3.

The MIB modules of the camera are here, too: with them, the programs of the
package snmp and other managers show names in place of numbers.]])
set(CPACK_DEBIAN_TOOLS_PACKAGE_SUGGESTS "snmp")
set(CPACK_DEBIAN_SIMULATOR_DESCRIPTION [[simulated PTZ camera to try SNMP on
quarnsnmp-camera plays the services of a pan/tilt/zoom camera: axes and lenses
that take their time, presets, alarm inputs, relays, temperature and power.
quarnsnmp-camctl shows and changes what it plays, and makes services fail.

The SNMP agent module of the package quarnsnmp reaches it through the stand-in
for the camera's library that is here. Do not install this package on a
camera: the stand-in is found before the camera's own library.

The service quarnsnmp-camera.service is installed, and not enabled.]])
set(CPACK_DEBIAN_SIMULATOR_PACKAGE_RECOMMENDS "quarnsnmp")
set(CPACK_DEBIAN_SIMULATOR_PACKAGE_SUGGESTS "quarnsnmp-tools")

foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER ${component} key)
  set(package ${package_of_${component}})
  set(CPACK_DEBIAN_${key}_PACKAGE_NAME ${package})
  foreach(control_file conffiles postinst prerm postrm)
    if(EXISTS ${packaging}/${package}/${control_file})
      list(APPEND CPACK_DEBIAN_${key}_PACKAGE_CONTROL_EXTRA ${packaging}/${package}/${control_file})
    endif()
  endforeach()
  install(FILES ${packaging}/copyright ${packaging}/changelog
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package} COMPONENT ${component} EXCLUDE_FROM_ALL)
  if(EXISTS ${packaging}/${package}/lintian-overrides)
    install(FILES ${packaging}/${package}/lintian-overrides RENAME ${package}
      DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides COMPONENT ${component} EXCLUDE_FROM_ALL)
  endif()
endforeach()

# The newest entry of the changelog is the release that is packed.
file(STRINGS ${packaging}/changelog release_line LIMIT_COUNT 1)
if(NOT release_line MATCHES "^quarnsnmp \\(${PROJECT_VERSION}\\) ")
  message(FATAL_ERROR "packaging/changelog begins with '${release_line}'; expected an entry for ${PROJECT_VERSION}")
endif()
file(STRINGS ${packaging}/changelog maintainer_line LIMIT_COUNT 1 REGEX "^ -- ")
string(REGEX REPLACE "^ -- (.*>)  .*$" "\\1" CPACK_PACKAGE_CONTACT "${maintainer_line}")

set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION net)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The core library, which belongs to no package that the module may depend on.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
if(NOT ZORVA_CORE_LIBRARY STREQUAL "")
  cmake_path(GET ZORVA_CORE_LIBRARY PARENT_PATH core_library_directory)
  list(APPEND CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${core_library_directory})
endif()
if(CMAKE_CROSSCOMPILING)
  set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE arm64)
  set(CPACK_QUARNSNMP_SYSROOT ${CMAKE_SYSROOT})
  list(APPEND CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
    ${CMAKE_SYSROOT}/lib/${CMAKE_LIBRARY_ARCHITECTURE} ${CMAKE_SYSROOT}/usr/lib/${CMAKE_LIBRARY_ARCHITECTURE})
endif()
set(CPACK_QUARNSNMP_CHANGELOG ${packaging}/changelog)
set(CPACK_PROJECT_CONFIG_FILE ${packaging}/environment.cmake)
set(CPACK_PRE_BUILD_SCRIPTS ${packaging}/compress.cmake)
include(CPack)
