# SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
# SPDX-License-Identifier: GPL-3.0-or-later

# The products and where they are installed. `products` is what a user needs:
# the programs with their resource folder, no tests, no benchmarks.
include(GNUInstallDirs)

add_custom_target(products)
foreach(program nurv nurv-workbench)
  if(TARGET ${program})
    add_dependencies(products ${program})
    install(TARGETS ${program} RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
  endif()
endforeach()
add_dependencies(products nurv_interface_files)
if(TARGET nurv-tags)
  add_dependencies(products nurv-tags)
  install(TARGETS nurv-tags RUNTIME DESTINATION lib/nurv)
endif()
get_property(tools GLOBAL PROPERTY NURV_BUNDLED_PROGRAMS)
foreach(tool IN LISTS tools)
  add_dependencies(products ${tool})
  # A former version may have installed a link here, which install() would write through.
  install(CODE "set(tool \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/lib/nurv/tools/${tool}\")
if(IS_SYMLINK \"\${tool}\")
  file(REMOVE \"\${tool}\")
endif()")
  install(TARGETS ${tool} RUNTIME DESTINATION lib/nurv/tools)
endforeach()

set(data "${CMAKE_SOURCE_DIR}/data")
install(FILES "${data}/org.nurvaudio.Workbench.desktop" DESTINATION "${CMAKE_INSTALL_DATADIR}/applications")
install(FILES "${data}/org.nurvaudio.Workbench.metainfo.xml" DESTINATION "${CMAKE_INSTALL_DATADIR}/metainfo")
install(DIRECTORY "${data}/icons/hicolor" DESTINATION "${CMAKE_INSTALL_DATADIR}/icons")
install(FILES "${NURV_INTERFACE_DIR}/nurv" DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions")
install(FILES "${NURV_INTERFACE_DIR}/_nurv" DESTINATION "${CMAKE_INSTALL_DATADIR}/zsh/site-functions")
install(FILES "${NURV_INTERFACE_DIR}/nurv.fish" DESTINATION "${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d")
install(FILES "${NURV_INTERFACE_DIR}/nurv.1" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1")
install(DIRECTORY "${data}/man/" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" FILES_MATCHING PATTERN "*.1")
