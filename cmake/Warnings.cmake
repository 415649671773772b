# Warnings for the project's own code, as errors. Linked PRIVATE by every target.
add_library(tarnwick_warnings INTERFACE)
target_compile_options(tarnwick_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Werror -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor
  -Wold-style-cast -Woverloaded-virtual -Wdouble-promotion -Wformat=2 -Wimplicit-fallthrough
  # GCC 12 reports the value of a moved std::optional as perhaps uninitialised when it optimises.
  $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
