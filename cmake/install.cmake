# SPDX-License-Identifier: GPL-2.0-or-later
# What `cmake --install` puts where. Components: runtime (the library), development, command, drive, viewer, python.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

install(TARGETS tesmor EXPORT tesmor_targets
  RUNTIME COMPONENT runtime
  LIBRARY COMPONENT runtime NAMELINK_COMPONENT development
  ARCHIVE COMPONENT development
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES ${PROJECT_SOURCE_DIR}/include/tesmor.h ${PROJECT_SOURCE_DIR}/include/tesmor_loader.h
  TYPE INCLUDE COMPONENT development)

# find_package(tesmor CONFIG), target tesmor::tesmor. Before 1.0 a new minor version may break its hosts.
set(packageDir ${CMAKE_INSTALL_LIBDIR}/cmake/tesmor)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/tesmor-config-version.cmake COMPATIBILITY SameMinorVersion)
install(EXPORT tesmor_targets NAMESPACE tesmor:: FILE tesmor-targets.cmake
  DESTINATION ${packageDir} COMPONENT development)
install(FILES ${PROJECT_SOURCE_DIR}/cmake/tesmor-config.cmake ${PROJECT_BINARY_DIR}/tesmor-config-version.cmake
  DESTINATION ${packageDir} COMPONENT development)

# The prefix is found from the file's own place, so that an installed tree may be moved.
set(pkgconfigDir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH prefixFromPkgconfig /prefix/${pkgconfigDir} /prefix)
string(REGEX REPLACE "/$" "" prefixFromPkgconfig ${prefixFromPkgconfig})
configure_file(${PROJECT_SOURCE_DIR}/cmake/tesmor.pc.in ${PROJECT_BINARY_DIR}/tesmor.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/tesmor.pc DESTINATION ${pkgconfigDir} COMPONENT development)

if(WIN32)
  set(guideDir docs)
else()
  set(guideDir ${CMAKE_INSTALL_DATADIR}/doc/libtesmor-dev)
endif()
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs/ ${PROJECT_SOURCE_DIR}/examples
  DESTINATION ${guideDir} COMPONENT development
  PATTERN CMakeLists.txt EXCLUDE
  PATTERN Doxyfile.in EXCLUDE)

if(TARGET tesmor_command)
  # $ORIGIN: the library of the same tree, wherever that is.
  set_target_properties(tesmor_command PROPERTIES INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
  install(TARGETS tesmor_command RUNTIME COMPONENT command)
  install(FILES ${PROJECT_SOURCE_DIR}/apps/tesmor/tesmor.1
    DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT command)
  install(FILES ${PROJECT_SOURCE_DIR}/apps/tesmor/completion.bash
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME tesmor COMPONENT command)
endif()

if(TARGET tesmor_drive)
  set(systemFiles ${PROJECT_SOURCE_DIR}/apps/drive/system)
  install(TARGETS tesmor_drive RUNTIME COMPONENT drive)
  install(FILES ${systemFiles}/tesmor-drive.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT drive)
  install(FILES ${systemFiles}/completion.bash
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME tesmor-drive COMPONENT drive)
  install(FILES ${systemFiles}/tesmor-drive.service DESTINATION lib/systemd/user COMPONENT drive)
  install(FILES ${systemFiles}/70-tesmor-drive.rules DESTINATION lib/udev/rules.d COMPONENT drive)
endif()

if(TARGET tesmor_viewer)
  set(desktopFiles ${PROJECT_SOURCE_DIR}/apps/viewer/desktop)
  set_target_properties(tesmor_viewer PROPERTIES INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
  install(TARGETS tesmor_viewer RUNTIME COMPONENT viewer)
  install(FILES ${desktopFiles}/tesmor-viewer.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT viewer)
  install(FILES ${desktopFiles}/tesmor-viewer.desktop
    DESTINATION ${CMAKE_INSTALL_DATADIR}/applications COMPONENT viewer)
  install(FILES ${desktopFiles}/org.tesmor.viewer.metainfo.xml
    DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo COMPONENT viewer)
  install(FILES ${PROJECT_SOURCE_DIR}/apps/viewer/widgets/icons/tesmor-viewer.svg
    DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps COMPONENT viewer)
  install(FILES ${PROJECT_SOURCE_DIR}/docs/viewer.md
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/tesmor-viewer COMPONENT viewer)
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs/images
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/tesmor-viewer COMPONENT viewer FILES_MATCHING PATTERN "viewer-*.jpg")
endif()

if(WIN32)
  # For a linker that does not read MinGW's import library: lib /def:tesmor.def /machine:x64
  install(FILES ${PROJECT_SOURCE_DIR}/src/api/exports.def
    DESTINATION ${CMAKE_INSTALL_LIBDIR} RENAME tesmor.def COMPONENT development)
endif()
