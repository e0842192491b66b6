# SPDX-FileCopyrightText: 2026 Vexel
# SPDX-License-Identifier: LicenseRef-Vexel

# Output folders. The build tree has the same layout as the installed tree, so that the host finds plug-in, translations
# and samples by the same relative paths in both, and an installed tree runs from any prefix.

if(WIN32)
    # Windows searches for libraries in the program's folder, and their names have no prefix "lib".
    set(VEXEL_LIBDIR ${CMAKE_INSTALL_BINDIR})
    set(CMAKE_SHARED_LIBRARY_PREFIX "")
else()
    set(VEXEL_LIBDIR ${CMAKE_INSTALL_LIBDIR})
endif()
set(VEXEL_PLUGINDIR ${VEXEL_LIBDIR}/vexel)
set(VEXEL_DATADIR ${CMAKE_INSTALL_DATADIR}/vexel)
set(VEXEL_TRANSLATIONDIR ${VEXEL_DATADIR}/translations)

set(VEXEL_OUTPUT_ROOT ${PROJECT_BINARY_DIR})
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${VEXEL_OUTPUT_ROOT}/${CMAKE_INSTALL_BINDIR})
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${VEXEL_OUTPUT_ROOT}/${VEXEL_LIBDIR})
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY ${VEXEL_OUTPUT_ROOT}/archive)

# Run paths are relative to the program, so an installed tree can be moved.
file(RELATIVE_PATH VEXEL_BIN_TO_LIB /prefix/${CMAKE_INSTALL_BINDIR} /prefix/${VEXEL_LIBDIR})
file(RELATIVE_PATH VEXEL_BIN_TO_PLUGINS /prefix/${CMAKE_INSTALL_BINDIR} /prefix/${VEXEL_PLUGINDIR})
file(RELATIVE_PATH VEXEL_BIN_TO_DATA /prefix/${CMAKE_INSTALL_BINDIR} /prefix/${VEXEL_DATADIR})
file(RELATIVE_PATH VEXEL_BIN_TO_TRANSLATIONS /prefix/${CMAKE_INSTALL_BINDIR} /prefix/${VEXEL_TRANSLATIONDIR})
file(RELATIVE_PATH VEXEL_PLUGINS_TO_LIB /prefix/${VEXEL_PLUGINDIR} /prefix/${VEXEL_LIBDIR})

if(NOT WIN32)
    set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)
    set(CMAKE_INSTALL_RPATH "$ORIGIN/${VEXEL_BIN_TO_LIB}")
endif()
