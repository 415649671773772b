# tarnwick_precompile(<target> <header>...): compiles these headers once for the target where users'
# program is built, which must be soon. The other builds notice a file that does not include what it
# needs.
function(tarnwick_precompile target)
  if(CMAKE_BUILD_TYPE STREQUAL "RelWithDebInfo")
    target_precompile_headers(${target} PRIVATE ${ARGN})
  endif()
endfunction()
