# SPDX-License-Identifier: GPL-2.0-or-later
# `cmake --build build/release --target package` makes, in the build's folder packages:
#   for Debian: libtesmor0 (the library), libtesmor-dev (what a viewer's developer needs), tesmor (the command),
#   tesmor-drive (the service for real motors), tesmor-viewer (the window), python3-tesmor (the Python module)
#   for Windows: a zip with the DLL, its import library, the headers and FFTW's DLL
set(CPACK_PACKAGE_NAME tesmor)
set(CPACK_PACKAGE_VENDOR "The tesmor developers")
set(CPACK_PACKAGE_CONTACT "The tesmor developers")
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
if(WIN32)
  set(CPACK_GENERATOR ZIP)
  set(CPACK_PACKAGE_FILE_NAME tesmor-${PROJECT_VERSION}-windows-x86_64)
else()
  set(CPACK_GENERATOR DEB)
  set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
endif()

set(CPACK_COMPONENTS_ALL runtime development)
if(TARGET tesmor_command)
  list(APPEND CPACK_COMPONENTS_ALL command)
endif()
if(TARGET tesmor_drive)
  list(APPEND CPACK_COMPONENTS_ALL drive)
endif()
if(TARGET tesmor_viewer)
  list(APPEND CPACK_COMPONENTS_ALL viewer)
endif()
if(TARGET tesmor_python)
  list(APPEND CPACK_COMPONENTS_ALL python)
endif()
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR})
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libtesmor${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)

set(CPACK_COMPONENT_RUNTIME_DESCRIPTION
  "A library that viewers of microscope cameras load for automatic focusing,
manual focus moves, focus stacks and images that are sharp throughout.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libtesmor-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS runtime)
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
  "Headers, CMake package, pkg-config file, guides and examples in C for those who
build the library into a viewer.")

set(CPACK_DEBIAN_COMMAND_PACKAGE_NAME tesmor)
set(CPACK_DEBIAN_COMMAND_PACKAGE_SECTION science)
set(CPACK_DEBIAN_COMMAND_PACKAGE_RECOMMENDS
  "gstreamer1.0-plugins-base, gstreamer1.0-plugins-good")
set(CPACK_COMPONENT_COMMAND_DEPENDS runtime)
set(CPACK_COMPONENT_COMMAND_DESCRIPTION
  "Merges focus stacks, focuses and captures with a camera and a focus drive, and
simulates a microscope for those who have none at hand.")

set(CPACK_DEBIAN_DRIVE_PACKAGE_NAME tesmor-drive)
set(CPACK_DEBIAN_DRIVE_PACKAGE_SECTION science)
set(CPACK_DEBIAN_DRIVE_PACKAGE_SUGGESTS "tesmor, indi-bin")
set(CPACK_COMPONENT_DRIVE_DESCRIPTION
  "Turns a real focus motor for viewers of microscope cameras: a board that speaks
G-code, a Sangaboard, an INDI focuser, or a camera's own controller on USB.")

set(CPACK_DEBIAN_VIEWER_PACKAGE_NAME tesmor-viewer)
set(CPACK_DEBIAN_VIEWER_PACKAGE_SECTION science)
set(CPACK_DEBIAN_VIEWER_PACKAGE_RECOMMENDS
  "tesmor-drive, qt6-wayland, qt6-gtk-platformtheme, gstreamer1.0-plugins-base, gstreamer1.0-plugins-good")
set(CPACK_COMPONENT_VIEWER_DEPENDS runtime)
set(CPACK_COMPONENT_VIEWER_DESCRIPTION
  "Shows the live image of a microscope's camera, focuses with one click, captures
focus stacks and fuses them into images that are sharp throughout.")

if(TARGET tesmor_python)
  math(EXPR nextMinor "${Python_VERSION_MINOR} + 1")
  set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-tesmor)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS
    "python3 (>= 3.${Python_VERSION_MINOR}), python3 (<< 3.${nextMinor}), python3-numpy")
  set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA
    ${PROJECT_SOURCE_DIR}/python/debian/postinst ${PROJECT_SOURCE_DIR}/python/debian/prerm)
  set(CPACK_COMPONENT_PYTHON_DEPENDS runtime)
  set(CPACK_COMPONENT_PYTHON_DESCRIPTION
    "Automatic focusing, focus stacks and their fusion in Python, on NumPy arrays.")
endif()

if(WIN32)
  install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION . COMPONENT runtime)
  install(FILES ${FFTW_ROOT}/bin/libfftw3-3.dll TYPE BIN COMPONENT runtime)
  install(FILES ${FFTW_ROOT}/COPYING DESTINATION . RENAME LICENSE.fftw COMPONENT runtime)
else()
  foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    string(TOUPPER CPACK_DEBIAN_${component}_PACKAGE_NAME package)
    install(FILES ${PROJECT_SOURCE_DIR}/LICENSE
      DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${${package}} RENAME copyright COMPONENT ${component})
  endforeach()
endif()

include(CPack)
