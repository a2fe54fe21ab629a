# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later

# The resource folder: the bundled programs plus one symbolic link per program
# of the distribution. A link is made also while its program is missing, so that
# installing the package later is enough.
set(NURV_TOOLS_DIR "${CMAKE_BINARY_DIR}/lib/nurv/tools")
file(MAKE_DIRECTORY "${NURV_TOOLS_DIR}")
# <name in the resource folder>=<program of the distribution>
set(NURV_DISTRIBUTION_TOOLS
  flac=flac metaflac=metaflac wavpack=wavpack wvunpack=wvunpack lame=lame opusenc=opusenc
  sox=sox cdda2wav=icedax AtomicParsley=AtomicParsley)
foreach(pair IN LISTS NURV_DISTRIBUTION_TOOLS)
  string(REPLACE "=" ";" parts "${pair}")
  list(GET parts 0 link)
  list(GET parts 1 program)
  file(CREATE_LINK "/usr/bin/${program}" "${NURV_TOOLS_DIR}/${link}" SYMBOLIC)
  install(CODE "file(MAKE_DIRECTORY \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/lib/nurv/tools\")
file(CREATE_LINK \"/usr/bin/${program}\" \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/lib/nurv/tools/${link}\" SYMBOLIC)")
endforeach()

# nurv_tool_library(<folder> SOURCES ... LINKS ...): what a program of our own is made
# of, as the library nurv_<folder>. No Qt.
function(nurv_tool_library name)
  nurv_library(${name} ${ARGN})
  target_include_directories(nurv_${name} PUBLIC "${CMAKE_SOURCE_DIR}/tools")
  set_target_properties(nurv_${name} PROPERTIES AUTOMOC OFF)
endfunction()

# nurv_tool(<name> SOURCES ... LINKS ...): a program of our own in the resource
# folder. It starts without Qt, like any other command-line tool.
function(nurv_tool name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  # Where a link to the distribution's program stood, nothing may be written through it.
  if(IS_SYMLINK "${NURV_TOOLS_DIR}/${name}")
    file(REMOVE "${NURV_TOOLS_DIR}/${name}")
  endif()
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE nurv_options ${ARG_LINKS})
  set_target_properties(${name} PROPERTIES
    AUTOMOC OFF
    RUNTIME_OUTPUT_DIRECTORY "${NURV_TOOLS_DIR}")
  set_property(GLOBAL APPEND PROPERTY NURV_BUNDLED_PROGRAMS ${name})
  if(TARGET nurv_programs)
    set_property(TARGET nurv_programs APPEND PROPERTY NURV_BUNDLED_PROGRAMS ${name})
  endif()
endfunction()

# nurv_fuzzer(<Name> [SOURCES ...] LINKS ...): fuzz/<Name>Fuzzer.cpp as a program of that
# name, with further sources.
function(nurv_fuzzer name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_executable(${name}Fuzzer ${name}Fuzzer.cpp ${ARG_SOURCES})
  target_link_libraries(${name}Fuzzer PRIVATE nurv_options ${ARG_LINKS})
  target_link_options(${name}Fuzzer PRIVATE -fsanitize=fuzzer)
  set_target_properties(${name}Fuzzer PROPERTIES AUTOMOC OFF)
endfunction()
