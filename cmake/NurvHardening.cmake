# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later

# What makes a fault in the reading of a hostile file end a program where it would
# otherwise obey the file: docs/decisions/0016-hardened-builds.md. Optimised builds only,
# as _FORTIFY_SOURCE needs the optimiser; sanitizers and fuzzers do the same work
# themselves, and see less where the C library's own checks come first.
include(CheckCXXCompilerFlag)

set(NURV_HARDENED OFF)
if(CMAKE_BUILD_TYPE MATCHES "^(Release|RelWithDebInfo|MinSizeRel)$" AND NOT NURV_SANITIZE AND NOT NURV_BUILD_FUZZERS)
  set(NURV_HARDENED ON)
endif()
if(NOT NURV_HARDENED)
  return()
endif()

# A distribution's compiler may define it already, at another level.
add_compile_options(-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
add_compile_definitions(_GLIBCXX_ASSERTIONS)
# Without -fPIE here the codecs' libraries depend on how the compiler was configured, and
# with -fPIC calls within a library are no longer inlined. Qt asks its users for -fPIC,
# which comes later on the command line.
add_compile_options(-fPIE -fstack-protector-strong)
add_link_options($<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>:-pie> -Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack)
foreach(flag -fstack-clash-protection -fcf-protection)
  string(MAKE_C_IDENTIFIER "NURV_COMPILER_KNOWS${flag}" known)
  check_cxx_compiler_flag(${flag} ${known})
  if(${known})
    add_compile_options(${flag})
  endif()
endforeach()
