# SPDX-License-Identifier: Apache-2.0
# Debian packages. After a build, `cpack` in the build directory creates a package per component.
# scripts/packages-build.sh creates the packages of both architectures.
include(GNUInstallDirs)

set(packaging ${CMAKE_CURRENT_SOURCE_DIR}/packaging)
set(package_of_module quarnsnmp)
set(package_of_tools quarnsnmp-tools)
set(package_of_simulator quarnsnmp-simulator)
set(package_of_panel quarnsnmp-panel)
set(package_of_rtsp quarnsnmp-rtsp)
set(CPACK_COMPONENTS_ALL module)
if(QUARNSNMP_BUILD_TOOLS)
  list(APPEND CPACK_COMPONENTS_ALL tools)
endif()
if(QUARNSNMP_BUILD_SIMULATOR)
  list(APPEND CPACK_COMPONENTS_ALL simulator)
endif()
if(TARGET quarnsnmp-panel)
  list(APPEND CPACK_COMPONENTS_ALL panel)
endif()
if(TARGET quarnsnmp-rtsp)
  list(APPEND CPACK_COMPONENTS_ALL rtsp)
endif()

# Files outside the prefix are part of the packages only. `cmake --install` with another prefix must not write to system
# directories.
install(FILES ${packaging}/quarnsnmp/quarnsnmp.conf
  DESTINATION /etc/snmp/snmpd.conf.d COMPONENT module EXCLUDE_FROM_ALL)
install(FILES ${packaging}/quarnsnmp/quarnsnmp-agent.conf
  DESTINATION /etc/snmp COMPONENT module EXCLUDE_FROM_ALL)
install(FILES ${packaging}/quarnsnmp/quarnsnmp-agent.service
  DESTINATION /lib/systemd/system COMPONENT module EXCLUDE_FROM_ALL)
if(QUARNSNMP_BUILD_TOOLS)
  install(FILES ${CMAKE_CURRENT_SOURCE_DIR}/monitoring/nagios/ptzctl.cfg
    DESTINATION /etc/nagios-plugins/config COMPONENT tools EXCLUDE_FROM_ALL)
endif()
if(QUARNSNMP_BUILD_SIMULATOR)
  install(FILES
    ${packaging}/quarnsnmp-simulator/quarnsnmp-camera.service
    ${packaging}/quarnsnmp-simulator/quarnsnmp-camera@.service
    ${packaging}/quarnsnmp-simulator/quarnsnmp-simulated-agent@.service
    DESTINATION /lib/systemd/system COMPONENT simulator EXCLUDE_FROM_ALL)
  # Not a file of /etc: an instance sets what differs.
  install(FILES ${packaging}/quarnsnmp-simulator/simulated-agent.conf
    DESTINATION ${CMAKE_INSTALL_DATADIR}/quarnsnmp COMPONENT simulator EXCLUDE_FROM_ALL)
  # Drop-ins of all directories are applied in the order of their names, so this one comes before an administrator's.
  foreach(unit snmpd quarnsnmp-agent)
    install(FILES ${packaging}/quarnsnmp-simulator/10-quarnsnmp-simulator.conf
      DESTINATION /lib/systemd/system/${unit}.service.d COMPONENT simulator EXCLUDE_FROM_ALL)
  endforeach()
  install(FILES ${packaging}/quarnsnmp-simulator/quarnsnmp-simulator.logrotate RENAME quarnsnmp-simulator
    DESTINATION /etc/logrotate.d COMPONENT simulator EXCLUDE_FROM_ALL)
  install(FILES ${packaging}/quarnsnmp-simulator/quarnsnmp-watch.conf
    DESTINATION /etc/snmp/snmpd.conf.d COMPONENT simulator EXCLUDE_FROM_ALL)
endif()
if(TARGET quarnsnmp-panel)
  install(FILES ${packaging}/quarnsnmp-panel/quarnsnmp-panel.service
    DESTINATION /lib/systemd/system COMPONENT panel EXCLUDE_FROM_ALL)
endif()
install(DIRECTORY docs/ DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/quarnsnmp COMPONENT module EXCLUDE_FROM_ALL
  FILES_MATCHING PATTERN "*.md" PATTERN decisions EXCLUDE PATTERN releasing.md EXCLUDE)

# Descriptions, and dependencies in addition to shared libraries. The first line of a description is its summary; CPack
# must not add that of the project.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_DEBIAN_MODULE_DESCRIPTION [[SNMP agent module for PTZ cameras
A module for the Net-SNMP agent of a pan/tilt/zoom camera. It lets a central
system monitor and control the camera over SNMP: camera control (NTCIP 1205),
device identification (NTCIP 1201), identity, health, alarm inputs and relays.
Traps report changes.

The module controls the camera through its library libzorva-core.so, which is
part of the camera's software. On other machines, quarnsnmp-simulator provides
a stand-in for the library and a simulated camera. quarnsnmp-core-check checks
whether a camera's library does what the module needs.

The installation does not change the agent. To enable the module, edit
/etc/snmp/snmpd.conf.d/quarnsnmp.conf. quarnsnmp-agent.service can run the
module in a process of its own; it is installed, but not enabled.]])
# The module runs in the agent's process and uses its libraries.
set(CPACK_DEBIAN_MODULE_PACKAGE_DEPENDS "snmpd")
set(CPACK_DEBIAN_MODULE_PACKAGE_SUGGESTS "quarnsnmp-tools, quarnsnmp-simulator")
set(CPACK_DEBIAN_TOOLS_DESCRIPTION [[control PTZ cameras over SNMP from the command line
ptzctl moves cameras with the SNMP objects of NTCIP 1205, reads their identity
and state, and explains the values that it reads and writes. It controls
several cameras at a time, with SNMPv2c and SNMPv3. As a plugin of Nagios or
Icinga, it reports the state of a camera.

The package also contains the MIB modules of the camera. With them, the
programs of the package snmp and other managers show names instead of numbers.]])
set(CPACK_DEBIAN_TOOLS_PACKAGE_SUGGESTS "snmp")
set(CPACK_DEBIAN_SIMULATOR_DESCRIPTION [[simulated PTZ camera to try SNMP on
quarnsnmp-camera simulates the services of a pan/tilt/zoom camera: axes and
lenses that move in real time, presets, alarm inputs, relays, temperature and
power. quarnsnmp-camctl shows and changes its state and injects faults.
quarnsnmp-fleet runs up to thousands of them, each with an agent of its own.

The SNMP agent module of the package quarnsnmp accesses the simulated camera
through a stand-in for the camera's library. Do not install this package on a
camera, because the stand-in takes precedence over the camera's own library.

The package installs quarnsnmp-camera.service, but does not enable it.]])
set(CPACK_DEBIAN_SIMULATOR_PACKAGE_RECOMMENDS "quarnsnmp")
set(CPACK_DEBIAN_SIMULATOR_PACKAGE_SUGGESTS "quarnsnmp-tools, quarnsnmp-panel, quarnsnmp-rtsp")
set(CPACK_DEBIAN_PANEL_DESCRIPTION [[picture and browser page of a simulated PTZ camera
quarnsnmp-panel draws what a camera of quarnsnmp-simulator sees, and serves a
page for browsers. The page moves the camera over SNMP and explains each
request, shows all requests that reach the agent, and changes the state of the
simulated camera. The picture is also available as a video stream.

The page is available on this machine only, unless an option says otherwise.
The package installs quarnsnmp-panel.service, but does not enable it.]])
set(CPACK_DEBIAN_PANEL_PACKAGE_DEPENDS "fonts-dejavu-core")
set(CPACK_DEBIAN_PANEL_PACKAGE_RECOMMENDS "quarnsnmp-simulator")
set(CPACK_DEBIAN_PANEL_PACKAGE_SUGGESTS "quarnsnmp-rtsp")
set(CPACK_DEBIAN_RTSP_DESCRIPTION [[RTSP streams of a simulated PTZ camera
quarnsnmp-rtsp offers the picture of quarnsnmp-panel to video systems, in H.264
and as JPEG pictures, over TCP and UDP. It encodes only while clients watch.]])
set(CPACK_DEBIAN_RTSP_PACKAGE_DEPENDS
  "gstreamer1.0-plugins-base, gstreamer1.0-plugins-good, gstreamer1.0-plugins-bad")
set(CPACK_DEBIAN_RTSP_PACKAGE_RECOMMENDS "quarnsnmp-simulator")

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

# The latest changelog entry must match the packed release.
file(STRINGS ${packaging}/changelog release_line LIMIT_COUNT 1)
if(NOT release_line MATCHES "^quarnsnmp \\(${PROJECT_VERSION}\\) ")
  message(FATAL_ERROR "packaging/changelog starts with '${release_line}'; expected an entry for ${PROJECT_VERSION}")
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
# The core library is private: the module must not depend on a package that contains it.
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
