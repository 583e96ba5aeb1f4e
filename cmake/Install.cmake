# SPDX-License-Identifier: MIT
# What `cmake --install` puts where. The tree can be moved afterwards: everything in it finds the
# rest relative to itself.
include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

set(header_dir ${CMAKE_INSTALL_INCLUDEDIR}/${installed_name})
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/${installed_package})
set(data_dir ${CMAKE_INSTALL_DATADIR}/${installed_name})

install(TARGETS screencapture EXPORT ${installed_package}Targets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        COMPONENT runtime NAMELINK_COMPONENT development
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
    INCLUDES DESTINATION ${header_dir})
install(FILES
    src/gui/screencapture/ScreenCaptureTool.h
    src/gui/screencapture/ScreenCaptureWnd.h
    src/base/code_convert.h
    src/base/myfs.h
    src/base/screencapture_export.h
    ${PROJECT_BINARY_DIR}/src/screencapture_version.h
    DESTINATION ${header_dir} COMPONENT development)

# compress_document(FILE NAME): makes NAME.gz in the build directory, without a time stamp.
find_program(GZIP_PROGRAM gzip)
if(NOT GZIP_PROGRAM)
    message(STATUS "Left out: the man page and the packages (gzip not found)")
endif()
function(compress_document file name)
    set(compressed ${PROJECT_BINARY_DIR}/${name}.gz)
    add_custom_command(OUTPUT ${compressed}
        COMMAND ${CMAKE_COMMAND} -E copy ${file} ${PROJECT_BINARY_DIR}/${name}
        COMMAND ${GZIP_PROGRAM} -9nf ${PROJECT_BINARY_DIR}/${name}
        DEPENDS ${file} VERBATIM)
    add_custom_target(compressed_${name} ALL DEPENDS ${compressed})
endfunction()

# For find_package().
install(EXPORT ${installed_package}Targets NAMESPACE ScreenCapture::
    DESTINATION ${package_dir} COMPONENT development)
configure_package_config_file(cmake/ScreenCaptureConfig.cmake.in ${installed_package}Config.cmake
    INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${installed_package}ConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES
    ${CMAKE_CURRENT_BINARY_DIR}/${installed_package}Config.cmake
    ${CMAKE_CURRENT_BINARY_DIR}/${installed_package}ConfigVersion.cmake
    DESTINATION ${package_dir} COMPONENT development)

# For pkg-config.
file(RELATIVE_PATH prefix_from_pkgconfig
    /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
if(NOT BUILD_SHARED_LIBS)
    set(static_definition -DSCREENCAPTURE_STATIC)
    set(static_libraries " -lxcb")
    set(static_requirement ", ${Qt}DBus")
endif()
configure_file(cmake/screencapture.pc.in ${installed_name}.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${installed_name}.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

if(TARGET screencapture_translations)
    install(FILES $<TARGET_PROPERTY:screencapture_translations,LIBRARY_QM_FILES>
        DESTINATION ${data_dir}/translations COMPONENT runtime)
endif()

if(TARGET capture-host)
    file(RELATIVE_PATH libraries_from_programs
        /prefix/${CMAKE_INSTALL_BINDIR} /prefix/${CMAKE_INSTALL_LIBDIR})
    set_target_properties(capture-host PROPERTIES
        INSTALL_RPATH "$ORIGIN/${libraries_from_programs}")
    install(TARGETS capture-host DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT host)
    install(FILES host/capture-host.desktop
        DESTINATION ${CMAKE_INSTALL_DATADIR}/applications COMPONENT host)
    install(FILES host/capture-host.svg
        DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps COMPONENT host)
    if(GZIP_PROGRAM)
        compress_document(${PROJECT_SOURCE_DIR}/host/capture-host.1 capture-host.1)
        install(FILES ${PROJECT_BINARY_DIR}/capture-host.1.gz
            DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT host)
    endif()
    if(TARGET screencapture_translations)
        install(FILES $<TARGET_PROPERTY:screencapture_translations,HOST_QM_FILES>
            DESTINATION ${data_dir}/translations COMPONENT host)
    endif()
endif()
