# SPDX-License-Identifier: MIT
# TARNWICK_COMPILE_TOGETHER: fewer, larger compilations, so that a build from nothing is soon done.
# The presets for users and for the sanitizers ask for it. The debug preset compiles each file by
# itself and notices one that does not include what it needs.
option(TARNWICK_COMPILE_TOGETHER "Compile the files of a folder together" OFF)

# tarnwick_compile_together(<target>...): compiles up to twenty files of a folder as one.
function(tarnwick_compile_together)
  if(NOT TARNWICK_COMPILE_TOGETHER)
    return()
  endif()
  set(most 20)
  foreach(target IN LISTS ARGN)
    set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_MODE GROUP)
    get_target_property(sources ${target} SOURCES)
    get_target_property(home ${target} SOURCE_DIR)
    list(FILTER sources INCLUDE REGEX "\\.cpp$")
    set(folders "")
    foreach(source IN LISTS sources)
      cmake_path(ABSOLUTE_PATH source BASE_DIRECTORY "${home}" NORMALIZE)
      cmake_path(GET source PARENT_PATH folder)
      cmake_path(RELATIVE_PATH folder BASE_DIRECTORY "${PROJECT_SOURCE_DIR}")
      string(MAKE_C_IDENTIFIER "${folder}" folder)
      list(APPEND folders "${folder}")
      set(same "${folders}")
      list(FILTER same INCLUDE REGEX "^${folder}$")
      list(LENGTH same count)
      math(EXPR number "(${count} - 1) / ${most}")
      set_source_files_properties("${source}" TARGET_DIRECTORY ${target}
        PROPERTIES UNITY_GROUP "${folder}_${number}")
    endforeach()
  endforeach()
endfunction()

# tarnwick_precompile(<target> <header>...): compiles these headers once for the target.
function(tarnwick_precompile target)
  if(TARNWICK_COMPILE_TOGETHER)
    target_precompile_headers(${target} PRIVATE ${ARGN})
  endif()
endfunction()

# tarnwick_precompiled(<target> <other>): uses the headers that are compiled for the other target,
# which is built with the same options.
function(tarnwick_precompiled target other)
  if(TARNWICK_COMPILE_TOGETHER)
    target_precompile_headers(${target} REUSE_FROM ${other})
  endif()
endfunction()
