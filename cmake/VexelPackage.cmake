# SPDX-FileCopyrightText: 2026 Vexel
# SPDX-License-Identifier: LicenseRef-Vexel

# vexel_install_package(TARGET): installs the CMake package VexelPlatform, which offers the library TARGET as
# Vexel::Platform for building your own host. The package is relocatable. Call this once.
include(CMakePackageConfigHelpers)

function(vexel_install_package target)
    set(folder ${CMAKE_INSTALL_LIBDIR}/cmake/VexelPlatform)
    set_target_properties(${target} PROPERTIES EXPORT_NAME Platform)
    add_library(Vexel::Platform ALIAS ${target})
    install(EXPORT VexelPlatformTargets NAMESPACE Vexel:: DESTINATION ${folder} COMPONENT development)

    set(VEXEL_QT_PLUGINDIR plugins)
    # The libraries that TARGET links, and their dependencies.
    set(VEXEL_RUNTIME_NAMES Qt6Core Qt6Gui Qt6Network Qt6Widgets libstdc++-6 libgcc_s_seh-1 libwinpthread-1)
    list(JOIN VEXEL_RUNTIME_NAMES " " VEXEL_RUNTIME_NAMES)
    configure_package_config_file(
        ${PROJECT_SOURCE_DIR}/cmake/VexelPlatformConfig.cmake.in
        ${CMAKE_CURRENT_BINARY_DIR}/VexelPlatformConfig.cmake
        INSTALL_DESTINATION ${folder}
        PATH_VARS CMAKE_INSTALL_BINDIR VEXEL_PLUGINDIR VEXEL_QT_PLUGINDIR
    )
    write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/VexelPlatformConfigVersion.cmake
        COMPATIBILITY SameMajorVersion
    )
    install(FILES
        ${CMAKE_CURRENT_BINARY_DIR}/VexelPlatformConfig.cmake
        ${CMAKE_CURRENT_BINARY_DIR}/VexelPlatformConfigVersion.cmake
        DESTINATION ${folder}
        COMPONENT development
    )
endfunction()
