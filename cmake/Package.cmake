# SPDX-License-Identifier: MIT
# Debian packages by cpack: the library, what developing with it takes, and the host. To be made in
# a build that is configured by the preset "package".
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME screencapture)
set(CPACK_PACKAGE_CONTACT "ScreenCapture developers <developers@screencapture.invalid>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
# Each description begins with a line of its own.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(qt5_development qtbase5-dev)
set(qt6_development qt6-base-dev)
set(qt5_translations qttranslations5-l10n)
set(qt6_translations qt6-translations-l10n)
set(CPACK_COMPONENTS_ALL runtime development host)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/src)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)

set(runtime_package lib${installed_name})
if(runtime_package MATCHES "[0-9]$")
    string(APPEND runtime_package -)
endif()
string(APPEND runtime_package ${PROJECT_VERSION_MAJOR})
set(same_runtime "${runtime_package} (= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${runtime_package})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "Screen capture and annotation for Qt ${SCREENCAPTURE_QT} - library
The desktop freezes, a region of it is dragged out, annotated with pen, text,
arrow, rectangle, ellipse and mosaic, and handed to the application.

This package holds the shared library and its translations.")

configure_file(cmake/debian/shlibs.in debian/shlibs @ONLY)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA
    ${PROJECT_SOURCE_DIR}/cmake/debian/triggers
    ${PROJECT_BINARY_DIR}/debian/shlibs)

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME lib${installed_name}-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${same_runtime}, ${qt${SCREENCAPTURE_QT}_development}")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "Screen capture and annotation for Qt ${SCREENCAPTURE_QT} - development
The desktop freezes, a region of it is dragged out, annotated with pen, text,
arrow, rectangle, ellipse and mosaic, and handed to the application.

This package holds the headers and what CMake and pkg-config need.")

set(CPACK_DEBIAN_HOST_PACKAGE_NAME capture-host)
set(CPACK_DEBIAN_HOST_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_HOST_PACKAGE_DEPENDS "${same_runtime}")
# What Qt itself says to the user, in the languages of the host.
set(CPACK_DEBIAN_HOST_PACKAGE_RECOMMENDS ${qt${SCREENCAPTURE_QT}_translations})
set(CPACK_DEBIAN_HOST_DESCRIPTION "Screenshots of a region of the desktop, with annotations
The desktop freezes, a region of it is dragged out, annotated with pen, text,
arrow, rectangle, ellipse and mosaic, and copied or saved. Scripts can take
one capture from the command line.")

# Each package tells its licence and what changed, as Debian wants it.
compress_document(${PROJECT_SOURCE_DIR}/CHANGELOG.md changelog)
configure_file(cmake/debian/changelog.in debian/changelog @ONLY)
compress_document(${PROJECT_BINARY_DIR}/debian/changelog changelog.Debian)
foreach(component runtime development host)
    string(TOUPPER ${component} upper)
    set(directory ${CMAKE_INSTALL_DATADIR}/doc/${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
    install(FILES LICENSE RENAME copyright DESTINATION ${directory} COMPONENT ${component})
    install(FILES ${PROJECT_BINARY_DIR}/changelog.gz ${PROJECT_BINARY_DIR}/changelog.Debian.gz
        DESTINATION ${directory} COMPONENT ${component})
endforeach()

include(CPack)
