# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later
find_package(GTest REQUIRED)
find_package(Qt6 6.4 REQUIRED COMPONENTS Test)

set(NURV_TEST_CASES_TOGETHER 8 CACHE STRING "How many cases of a suite share a process at most")

# All tests with that label, for builds that run no others.
add_custom_target(unit_tests)

# Optimising test cases, and watching their own arithmetic, took more than half of the time of a whole build, for
# what runs once. What they test is built as ever.
function(nurv_compile_quickly target)
  target_compile_options(${target} PRIVATE -O0 -U_FORTIFY_SOURCE)
  if(NURV_SANITIZE MATCHES "undefined")
    target_compile_options(${target} PRIVATE -fno-sanitize=undefined)
  endif()
endfunction()

# nurv_test(<name> [OPTIMISED] LABELS ... SOURCES ... LINKS ...): one test executable per
# folder, run headless with a home folder of its own. Tests of views link
# nurv_gui_test_support, whose application object can show widgets.
function(nurv_test name)
  cmake_parse_arguments(ARG "OPTIMISED" "" "LABELS;SOURCES;LINKS" ${ARGN})
  add_executable(${name}_test ${ARG_SOURCES})
  if(NOT nurv_gui_test_support IN_LIST ARG_LINKS)
    list(PREPEND ARG_LINKS nurv_test_support)
  endif()
  target_link_libraries(${name}_test PRIVATE nurv_options ${ARG_LINKS})
  # Test sources name their helpers freely, so they are never merged.
  set_target_properties(${name}_test PROPERTIES
    UNITY_BUILD OFF
    RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/tests")
  if(NOT ARG_OPTIMISED)
    nurv_compile_quickly(${name}_test)
  endif()
  if("unit" IN_LIST ARG_LABELS)
    add_dependencies(unit_tests ${name}_test)
  endif()
  # Asked when ctest starts, and again when the program is newer than what it said.
  set(listed "${CMAKE_CURRENT_BINARY_DIR}/${name}_listed.cmake")
  set(discovery "${CMAKE_CURRENT_BINARY_DIR}/${name}_discovery.cmake")
  set(properties "LABELS [==[${ARG_LABELS}]==] TIMEOUT 300 ENVIRONMENT [==[QT_QPA_PLATFORM=offscreen;NURV_TOOLS=${NURV_TOOLS_DIR}]==]")
  file(GENERATE OUTPUT "${discovery}" CONTENT
"if(NOT EXISTS [==[$<TARGET_FILE:${name}_test>]==])
  # Without a label: who asks for others does not need it.
  add_test(${name}_NOT_BUILT ${name}_NOT_BUILT)
  return()
endif()
if(NOT EXISTS [==[${listed}]==] OR [==[$<TARGET_FILE:${name}_test>]==] IS_NEWER_THAN [==[${listed}]==]
    OR [==[${discovery}]==] IS_NEWER_THAN [==[${listed}]==])
  include([==[${CMAKE_SOURCE_DIR}/cmake/NurvDiscoverTests.cmake]==])
  nurv_discover_tests([==[$<TARGET_FILE:${name}_test>]==] ${name}. ${NURV_TEST_CASES_TOGETHER} [==[${listed}]==]
    [=====[${properties}]=====])
endif()
include([==[${listed}]==])
")
  set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES "${discovery}")
endfunction()

# nurv_corpus_test(<Fuzzer> LINKS ...): gives the files of corpus/<Fuzzer> in the current
# folder to fuzz/<Fuzzer>Fuzzer.cpp, with limits of memory and time.
function(nurv_corpus_test fuzzer)
  cmake_parse_arguments(ARG "" "" "LINKS" ${ARGN})
  string(REGEX REPLACE "([a-z0-9])([A-Z])" "\\1_\\2" name "${fuzzer}")
  string(TOLOWER "${name}_corpus" name)
  nurv_test(${name} OPTIMISED LABELS unit
    SOURCES
      "${CMAKE_SOURCE_DIR}/tests/support/ReplayedCorpusTest.cpp"
      "${CMAKE_SOURCE_DIR}/fuzz/${fuzzer}Fuzzer.cpp"
    LINKS nurv_allocation_meter ${ARG_LINKS})
  target_compile_definitions(${name}_test PRIVATE NURV_CORPUS="${CMAKE_CURRENT_SOURCE_DIR}/corpus/${fuzzer}")
endfunction()
