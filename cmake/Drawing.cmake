# SPDX-License-Identifier: Apache-2.0
# Libraries that draw pictures: Cairo and TurboJPEG, as the targets drawing::cairo and drawing::turbojpeg. Neither comes
# with a CMake package on Debian.

# Usage: find_drawing_library(TARGET HEADER LIBRARY)
function(find_drawing_library name header library)
  find_path(DRAWING_${library}_INCLUDE ${header} PATH_SUFFIXES cairo)
  find_library(DRAWING_${library}_LIBRARY ${library})
  mark_as_advanced(DRAWING_${library}_INCLUDE DRAWING_${library}_LIBRARY)
  if(DRAWING_${library}_INCLUDE AND DRAWING_${library}_LIBRARY)
    add_library(${name} UNKNOWN IMPORTED GLOBAL)
    set_target_properties(${name} PROPERTIES
      IMPORTED_LOCATION ${DRAWING_${library}_LIBRARY}
      INTERFACE_INCLUDE_DIRECTORIES ${DRAWING_${library}_INCLUDE})
  endif()
endfunction()

find_drawing_library(drawing::cairo cairo.h cairo)
find_drawing_library(drawing::turbojpeg turbojpeg.h turbojpeg)
if(TARGET drawing::cairo AND TARGET drawing::turbojpeg)
  set(can_draw ON)
else()
  set(can_draw OFF)
endif()
