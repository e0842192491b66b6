# SPDX-FileCopyrightText: 2026 Vexel
# SPDX-License-Identifier: LicenseRef-Vexel

# vexel_windows_resources(TARGET DESCRIPTION [ICON])
#
# Adds a Windows version resource (version and description) to a library or program, and icon and manifest to a program.
# ICON is a file in windows/; the default is program.ico. Does nothing on other systems.

if(WIN32)
    enable_language(RC)
endif()

function(vexel_windows_resources target description)
    if(NOT WIN32)
        return()
    endif()
    set(icon program.ico)
    if(ARGC GREATER 2)
        set(icon ${ARGV2})
    endif()
    set(VEXEL_RESOURCE_DESCRIPTION ${description})
    set(VEXEL_RESOURCE_NAME ${target})
    get_target_property(type ${target} TYPE)
    if(type STREQUAL EXECUTABLE)
        set(VEXEL_RESOURCE_FILE ${target}.exe)
        set(VEXEL_RESOURCE_TYPE VFT_APP)
        # Windows shows the icon with the lowest number.
        set(VEXEL_RESOURCE_PROGRAM "1 ICON \"${icon}\"\n1 RT_MANIFEST \"program.manifest\"")
    else()
        set(VEXEL_RESOURCE_FILE ${target}.dll)
        set(VEXEL_RESOURCE_TYPE VFT_DLL)
        set(VEXEL_RESOURCE_PROGRAM "")
    endif()
    set(file ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc)
    configure_file(${PROJECT_SOURCE_DIR}/windows/version.rc.in ${file} @ONLY)
    set_source_files_properties(${file} PROPERTIES
        OBJECT_DEPENDS "${PROJECT_SOURCE_DIR}/windows/${icon};${PROJECT_SOURCE_DIR}/windows/program.manifest"
    )
    # A separate target, because the resource compiler does not know the C++ compiler's options.
    add_library(${target}_resources OBJECT ${file})
    target_include_directories(${target}_resources PRIVATE ${PROJECT_SOURCE_DIR}/windows)
    target_sources(${target} PRIVATE $<TARGET_OBJECTS:${target}_resources>)
endfunction()
