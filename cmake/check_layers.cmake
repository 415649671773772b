# SPDX-License-Identifier: MIT
# cmake -DROOT=<tree> [-DSTAMP=<file>] -P check_layers.cmake
# Reads the #include lines of the tree and fails on the first set of arrows that point up.
cmake_minimum_required(VERSION 3.25)

# Lower number: lower layer. A file may include its own layer and those below.
set(layer_core/records 0)
set(layer_platform 1)
set(layer_services 2)
set(layer_settings 3)
# What the portable folders decode and number, the system's own home hands over and checks.
set(layer_platform/macos 3)
set(layer_platform/macos/readers 3)
set(layer_evaluation 4)
set(layer_core 5)
set(layer_ui/panel 6)
set(layer_ui/settings 6)
set(layer_ui/symbols 6)
set(layer_ui/qt 7)
set(layer_ui/appkit 7)
set(layer_app 8)
set(layer_tools 8)

# What the portable folders may include in angle brackets: the C++ standard library. The readers of
# macOS may use JSON, too.
set(portable core/records services settings core evaluation ui/panel ui/settings
    platform/macos/readers)
set(standard algorithm any array atomic bit bitset charconv chrono cmath compare concepts
    condition_variable cstddef cstdint cstdio cstdlib cstring ctime deque exception forward_list
    functional future initializer_list iomanip ios iosfwd istream iterator limits list locale map
    memory mutex numbers numeric optional ostream queue random ranges ratio regex set shared_mutex
    source_location span sstream stack stdexcept streambuf string string_view system_error thread
    tuple type_traits typeindex typeinfo unordered_map unordered_set utility variant vector version)
# What platform/macos/posix may include besides: headers that Linux and macOS both have.
set(posix cerrno csignal fcntl.h poll.h signal.h spawn.h sys/stat.h sys/types.h sys/wait.h
    unistd.h)

function(folder_of path result)
  set(folder "")
  if(path MATCHES "^(ui/[a-z]+|core/records|platform/macos/readers|platform/macos)/")
    set(folder "${CMAKE_MATCH_1}")
  elseif(path MATCHES "^([a-z]+)/")
    set(folder "${CMAKE_MATCH_1}")
  endif()
  set(${result} "${folder}" PARENT_SCOPE)
endfunction()

file(GLOB_RECURSE files RELATIVE "${ROOT}"
  "${ROOT}/app/*" "${ROOT}/core/*" "${ROOT}/evaluation/*" "${ROOT}/platform/*"
  "${ROOT}/services/*" "${ROOT}/settings/*" "${ROOT}/tools/*" "${ROOT}/ui/*")
list(FILTER files INCLUDE REGEX "\\.(h|cpp|mm)$")
set(faults "")
set(arrows 0)
foreach(path IN LISTS files)
  folder_of("${path}" own)
  file(STRINGS "${ROOT}/${path}" lines REGEX "^[ \t]*#[ \t]*include")
  foreach(line IN LISTS lines)
    if(line MATCHES "include[ \t]*\"([^\"]+)\"")
      set(target "${CMAKE_MATCH_1}")
      math(EXPR arrows "${arrows} + 1")
      folder_of("${target}" other)
      if(NOT DEFINED "layer_${other}")
        string(APPEND faults "  ${path}: \"${target}\" is not named from the root of the tree\n")
      elseif(layer_${other} GREATER layer_${own})
        string(APPEND faults "  ${path}: \"${target}\" lies above\n")
      elseif(own IN_LIST portable AND NOT other STREQUAL own
             AND target MATCHES "^platform/(linux|macos|testing|qt)/")
        string(APPEND faults "  ${path}: \"${target}\" belongs to one platform\n")
      elseif(own STREQUAL "tools" AND NOT path MATCHES "^tools/(linux|macos)_system\\."
             AND target MATCHES "^platform/(linux|macos|testing|qt)/")
        string(APPEND faults "  ${path}: \"${target}\" belongs to one platform\n")
      elseif(path MATCHES "^platform/macos/" AND target MATCHES "^platform/(linux|testing|qt)/")
        string(APPEND faults "  ${path}: \"${target}\" belongs to another platform\n")
      endif()
    elseif(line MATCHES "include[ \t]*<([^>]+)>")
      set(target "${CMAKE_MATCH_1}")
      if((own IN_LIST portable OR path MATCHES "^platform/[^/]+$") AND NOT target IN_LIST standard
         AND NOT (own STREQUAL "platform/macos/readers" AND target STREQUAL "nlohmann/json.hpp"))
        string(APPEND faults "  ${path}: <${target}> is not portable\n")
      elseif(path MATCHES "^platform/macos/posix/" AND NOT target IN_LIST standard
             AND NOT target IN_LIST posix)
        string(APPEND faults "  ${path}: <${target}> is not POSIX\n")
      endif()
    endif()
  endforeach()
endforeach()
if(faults)
  message(FATAL_ERROR "Includes that break the layers:\n${faults}")
endif()
if(arrows EQUAL 0)
  message(FATAL_ERROR "No include was found below ${ROOT}")
endif()
if(STAMP)
  file(WRITE "${STAMP}" "${arrows}\n")
endif()
