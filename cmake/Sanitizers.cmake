# SPDX-License-Identifier: MIT
# TARNWICK_SANITIZE: a list for -fsanitize=, such as "address,undefined". Empty: none.
set(TARNWICK_SANITIZE "" CACHE STRING "Sanitizers to build with, as for -fsanitize=")
if(TARNWICK_SANITIZE)
  add_compile_options("-fsanitize=${TARNWICK_SANITIZE}" -fno-omit-frame-pointer
                      -fno-sanitize-recover=all)
  add_link_options("-fsanitize=${TARNWICK_SANITIZE}")
endif()
