# SPDX-FileCopyrightText: 2026 Vexel
# SPDX-License-Identifier: LicenseRef-Vexel

# Cross-compiles for Windows on Debian, with the Qt that windows/build-qt has built: `cmake --preset windows`.
#
# Set VEXEL_QT_WINDOWS, as environment or cache variable, if that Qt is not in the default folder.

if(NOT VEXEL_QT_WINDOWS)
    execute_process(COMMAND ${CMAKE_CURRENT_LIST_DIR}/build-qt --where
        OUTPUT_VARIABLE VEXEL_QT_WINDOWS
        OUTPUT_STRIP_TRAILING_WHITESPACE
        COMMAND_ERROR_IS_FATAL ANY
    )
endif()
# Cached, because later runs of CMake may have another environment.
set(VEXEL_QT_WINDOWS ${VEXEL_QT_WINDOWS} CACHE PATH "Qt for Windows, built by windows/build-qt")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES VEXEL_QT_WINDOWS)

if(NOT EXISTS ${VEXEL_QT_WINDOWS}/lib/cmake/Qt6/qt.toolchain.cmake)
    message(FATAL_ERROR "No Qt for Windows in ${VEXEL_QT_WINDOWS}: run windows/build-qt first.")
endif()

# Build tools such as moc are Debian's, of the same Qt version.
set(QT_HOST_PATH /usr)
set(QT_HOST_PATH_CMAKE_DIR /usr/lib/x86_64-linux-gnu/cmake)
set(QT_CHAINLOAD_TOOLCHAIN_FILE ${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)
include(${VEXEL_QT_WINDOWS}/lib/cmake/Qt6/qt.toolchain.cmake)

# This Qt is built without zstd, which Debian's rcc uses by default. Format version 1 contains no file times, so that
# builds are reproducible.
set(CMAKE_AUTORCC_OPTIONS --no-zstd --format-version 1)

# Runs built programs and tests.
set(CMAKE_CROSSCOMPILING_EMULATOR
    ${CMAKE_CURRENT_LIST_DIR}/wine --prefix ${CMAKE_BINARY_DIR}/wine --path ${CMAKE_BINARY_DIR}/bin)
