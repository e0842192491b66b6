# Cross-builds this tree for Windows from Debian, with the Qt that windows/build-qt made: `cmake --preset windows`.
#
# VEXEL_QT_WINDOWS, as environment or cache variable, names the folder of that Qt where it is not in the usual place.

if(NOT VEXEL_QT_WINDOWS)
    execute_process(COMMAND ${CMAKE_CURRENT_LIST_DIR}/build-qt --where
        OUTPUT_VARIABLE VEXEL_QT_WINDOWS
        OUTPUT_STRIP_TRAILING_WHITESPACE
        COMMAND_ERROR_IS_FATAL ANY
    )
endif()
# A later run of CMake, such as one that the build starts, has another environment, and must find the same Qt.
set(VEXEL_QT_WINDOWS ${VEXEL_QT_WINDOWS} CACHE PATH "Qt for Windows, as windows/build-qt makes it")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES VEXEL_QT_WINDOWS)

if(NOT EXISTS ${VEXEL_QT_WINDOWS}/lib/cmake/Qt6/qt.toolchain.cmake)
    message(FATAL_ERROR "There is no Qt for Windows in ${VEXEL_QT_WINDOWS}: run windows/build-qt first.")
endif()

# The tools that Qt runs during a build, such as moc, are Debian's of the same version.
set(QT_HOST_PATH /usr)
set(QT_HOST_PATH_CMAKE_DIR /usr/lib/x86_64-linux-gnu/cmake)
set(QT_CHAINLOAD_TOOLCHAIN_FILE ${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)
include(${VEXEL_QT_WINDOWS}/lib/cmake/Qt6/qt.toolchain.cmake)

# That Qt cannot unpack what Debian's rcc packs by itself; and that rcc's first format has no times of files in it, so that
# the same sources become the same program.
set(CMAKE_AUTORCC_OPTIONS --no-zstd --format-version 1)

# Runs what is built, the tests among it.
set(CMAKE_CROSSCOMPILING_EMULATOR
    ${CMAKE_CURRENT_LIST_DIR}/wine --prefix ${CMAKE_BINARY_DIR}/wine --path ${CMAKE_BINARY_DIR}/bin)
