# SPDX-License-Identifier: MIT
# Warnings for the project's own code. Linked PRIVATE by every target.
#
# They are errors for those who work on the project, not for a user whose newer compiler warns of
# something more.
option(TARNWICK_WARNINGS_AS_ERRORS "Treat warnings as errors" OFF)
add_library(tarnwick_warnings INTERFACE)
target_compile_options(tarnwick_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wnon-virtual-dtor
  -Wold-style-cast -Woverloaded-virtual -Wdouble-promotion -Wformat=2 -Wimplicit-fallthrough
  # The compiler does not know whether the oldest system has what a plain id is asked for.
  $<$<COMPILE_LANGUAGE:OBJCXX>:-Wobjc-messaging-id>
  # GCC 12 reports the value of a moved std::optional as perhaps uninitialised when it optimises.
  $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>
  # Where files are compiled together, a local name shadows those of another file, and GCC warns of
  # a class with a member of an unnamed namespace because its file is not the main one.
  $<IF:$<BOOL:${TARNWICK_COMPILE_TOGETHER}>,$<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>,-Wshadow>
  $<$<BOOL:${TARNWICK_WARNINGS_AS_ERRORS}>:-Werror>)
