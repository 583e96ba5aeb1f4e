# SPDX-License-Identifier: MIT
# Chooses the Qt that everything is built on. Afterwards SCREENCAPTURE_QT is its major version, and
# ${Qt}::Widgets and the like are its targets.
set(qt5_minimum 5.15)
set(qt6_minimum 6.4)

set(SCREENCAPTURE_QT "" CACHE STRING
    "Qt 5 or 6. Empty: what the including project has found, else 5 where it is installed, else 6")
set_property(CACHE SCREENCAPTURE_QT PROPERTY STRINGS "" 5 6)

if(SCREENCAPTURE_QT STREQUAL "")
    if(NOT TARGET Qt5::Core AND NOT TARGET Qt6::Core)
        find_package(Qt5 ${qt5_minimum} QUIET COMPONENTS Widgets)
    endif()
    if(TARGET Qt5::Core)
        set(SCREENCAPTURE_QT 5)
    else()
        set(SCREENCAPTURE_QT 6)
    endif()
elseif(NOT SCREENCAPTURE_QT MATCHES "^[56]$")
    message(FATAL_ERROR "SCREENCAPTURE_QT must be 5 or 6, not ${SCREENCAPTURE_QT}")
endif()

set(Qt Qt${SCREENCAPTURE_QT})
set(qt_minimum ${qt${SCREENCAPTURE_QT}_minimum})
find_package(${Qt} ${qt_minimum} REQUIRED COMPONENTS Core DBus Gui Widgets)
find_package(${Qt}LinguistTools ${qt_minimum} QUIET)

# What is installed has names of its own for each version, so that both can be installed side by side.
set(installed_name screencapture)
set(installed_package ScreenCapture)
if(SCREENCAPTURE_QT EQUAL 6)
    string(APPEND installed_name -qt6)
    string(APPEND installed_package Qt6)
endif()
