# TARNWICK_SANITIZE: a list for -fsanitize=, such as "address,undefined". Empty: none.
set(TARNWICK_SANITIZE "" CACHE STRING "Sanitizers to build with, as for -fsanitize=")
if(TARNWICK_SANITIZE)
  add_compile_options("-fsanitize=${TARNWICK_SANITIZE}" -fno-omit-frame-pointer
                      -fno-sanitize-recover=all)
  add_link_options("-fsanitize=${TARNWICK_SANITIZE}")
  # GCC's flow analysis does not see through the sanitizers' instrumentation and reports
  # variables as perhaps uninitialised that are not; the other presets keep this warning.
  target_compile_options(tarnwick_warnings INTERFACE -Wno-maybe-uninitialized)
endif()
