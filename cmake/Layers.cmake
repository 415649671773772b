# SPDX-License-Identifier: MIT
# Keeps the layers apart. The build breaks when
#  - tarnwick_core is linked against anything but the standard library,
#  - tarnwick_core needs a symbol that the standard library does not have,
#  - a file includes a layer above its own, or a core file an operating-system or toolkit header.

function(tarnwick_check_layers)
  get_target_property(linked tarnwick_core LINK_LIBRARIES)
  foreach(library IN LISTS linked)
    if(NOT library MATCHES "^tarnwick_warnings$")
      message(FATAL_ERROR "tarnwick_core must stay portable, but it links ${library}")
    endif()
  endforeach()

  # The whole core linked with nothing else: an undefined symbol is a dependency it must not have.
  file(CONFIGURE OUTPUT core_alone.cpp CONTENT "int main() { return 0; }\n" @ONLY)
  add_executable(tarnwick_core_alone "${CMAKE_CURRENT_BINARY_DIR}/core_alone.cpp")
  target_link_libraries(tarnwick_core_alone PRIVATE "$<LINK_LIBRARY:WHOLE_ARCHIVE,tarnwick_core>")

  file(GLOB_RECURSE sources CONFIGURE_DEPENDS RELATIVE "${PROJECT_SOURCE_DIR}"
    app/*.h app/*.cpp app/*.mm core/*.h core/*.cpp evaluation/*.h evaluation/*.cpp platform/*.h
    platform/*.cpp platform/*.mm services/*.h services/*.cpp settings/*.h settings/*.cpp tools/*.h
    tools/*.cpp tools/*.mm ui/*.h ui/*.cpp ui/*.mm)
  set(stamp "${CMAKE_CURRENT_BINARY_DIR}/layers.stamp")
  list(TRANSFORM sources PREPEND "${PROJECT_SOURCE_DIR}/" OUTPUT_VARIABLE absolute)
  add_custom_command(OUTPUT "${stamp}"
    COMMAND "${CMAKE_COMMAND}" "-DROOT=${PROJECT_SOURCE_DIR}" "-DSTAMP=${stamp}"
            -P "${PROJECT_SOURCE_DIR}/cmake/check_layers.cmake"
    DEPENDS ${absolute} "${PROJECT_SOURCE_DIR}/cmake/check_layers.cmake"
    COMMENT "Checking that includes point down only" VERBATIM)
  add_custom_target(tarnwick_layers ALL DEPENDS "${stamp}")
endfunction()
