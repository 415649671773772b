# SPDX-License-Identifier: MIT
# TARNWICK_HARDENED: the programs are built with what distributions add to theirs, so that a fault
# ends the program and does nothing worse. The preset for users asks for it; packages bring the
# flags of their distribution instead.
option(TARNWICK_HARDENED "Harden the programs as distributions do" OFF)

include(CheckCXXCompilerFlag)
# Each of the two is known for some processors only.
check_cxx_compiler_flag(-fcf-protection=full TARNWICK_HAS_CF_PROTECTION)
check_cxx_compiler_flag(-mbranch-protection=standard TARNWICK_HAS_BRANCH_PROTECTION)

# tarnwick_harden(<target>...)
function(tarnwick_harden)
  if(NOT TARNWICK_HARDENED)
    return()
  endif()
  foreach(target IN LISTS ARGN)
    target_compile_options(${target} PRIVATE -fstack-protector-strong
      $<$<BOOL:${TARNWICK_HAS_CF_PROTECTION}>:-fcf-protection=full>
      $<$<BOOL:${TARNWICK_HAS_BRANCH_PROTECTION}>:-mbranch-protection=standard>)
    # Some compilers define it by themselves.
    target_compile_options(${target} PRIVATE -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
    target_link_options(${target} PRIVATE -Wl,-z,relro,-z,now)
    set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE ON)
  endforeach()
endfunction()
