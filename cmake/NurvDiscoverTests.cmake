# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later

# Read by ctest when it starts: asks a test program for its cases, and writes the tests of
# ctest into a file beside it. Up to `together` cases of one suite share a process, whose start
# costs more than most cases do.

# The filter of the program and the name of the test for the cases gathered so far.
macro(nurv_finish_group)
  list(LENGTH group count)
  if(count GREATER 0)
    list(JOIN group ":" filter)
    if(count EQUAL 1)
      set(name "${prefix}${group}")
    elseif(number EQUAL 1 AND isLast)
      set(name "${prefix}${suite}")
    else()
      set(name "${prefix}${suite}.${number}")
    endif()
    string(APPEND tests "add_test([==[${name}]==] [==[${program}]==] [==[--gtest_filter=${filter}]==])\n")
    string(APPEND tests "set_tests_properties([==[${name}]==] PROPERTIES ${properties}")
    # Of several cases one that was skipped says nothing of the rest.
    if(count EQUAL 1)
      string(APPEND tests " SKIP_REGULAR_EXPRESSION [==[\\[  SKIPPED \\]]==]")
    endif()
    string(APPEND tests ")\n")
    set(group "")
    math(EXPR number "${number} + 1")
  endif()
endmacro()

# nurv_discover_tests(<program> <prefix> <together> <file> <properties>)
function(nurv_discover_tests program prefix together file properties)
  execute_process(COMMAND "${program}" --gtest_list_tests
    OUTPUT_VARIABLE listing RESULT_VARIABLE status TIMEOUT 60)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "${program} does not tell its cases: ${status}")
  endif()
  # A value of a parameter may hold whatever a list takes for its own.
  string(REGEX REPLACE " *#[^\n]*" "" listing "${listing}")
  string(REPLACE "\n" ";" listing "${listing}")
  set(tests "")
  set(group "")
  set(suite "")
  set(number 1)
  set(isLast TRUE)
  foreach(line IN LISTS listing)
    if(line MATCHES "^  ([^ ]+)$")
      list(LENGTH group count)
      if(count EQUAL together)
        set(isLast FALSE)
        nurv_finish_group()
        set(isLast TRUE)
      endif()
      list(APPEND group "${suite}.${CMAKE_MATCH_1}")
    elseif(line MATCHES "^([^ ]+)\\.$")
      nurv_finish_group()
      set(suite "${CMAKE_MATCH_1}")
      set(number 1)
    endif()
  endforeach()
  nurv_finish_group()
  file(WRITE "${file}" "${tests}")
endfunction()
