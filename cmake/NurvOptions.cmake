# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later

# One interface target carries the language standard, the warnings and the Qt
# definitions; every target of the project links it.
add_library(nurv_options INTERFACE)
target_compile_features(nurv_options INTERFACE cxx_std_20)
target_compile_options(nurv_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Wold-style-cast
  -Woverloaded-virtual
  # Optimising, GCC 12 raises it falsely inside the headers of Qt and its own.
  $<$<CONFIG:Debug>:-Wnull-dereference>)
if(NURV_WERROR)
  # Raised falsely inside GCC 12's own headers too.
  target_compile_options(nurv_options INTERFACE -Werror -Wno-error=restrict)
endif()
target_compile_definitions(nurv_options INTERFACE
  QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_KEYWORDS QT_NO_FOREACH
  NURV_VERSION="${PROJECT_VERSION}")
target_include_directories(nurv_options INTERFACE "${CMAKE_SOURCE_DIR}/src")

if(NURV_SANITIZE)
  add_compile_options(-fsanitize=${NURV_SANITIZE} -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${NURV_SANITIZE})
  # Optimised builds check Qt's own assertions, too.
  add_compile_definitions(QT_FORCE_ASSERTS)
  if(NURV_SANITIZE MATCHES "undefined")
    add_compile_options(-fno-sanitize-recover=undefined)
    # This check opens a pipe to look at an object, and takes it for a broken one where no descriptor is left.
    add_compile_options(-fno-sanitize=vptr)
  endif()
endif()

# nurv_library(<folder> SOURCES ... LINKS ...): the static library of one folder
# under src. What it links is its place in the picture of docs/architecture.md.
function(nurv_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_library(nurv_${name} STATIC ${ARG_SOURCES})
  target_link_libraries(nurv_${name} PUBLIC nurv_options ${ARG_LINKS})
endfunction()
