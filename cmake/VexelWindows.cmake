# SPDX-FileCopyrightText: 2026 Vexel
# SPDX-License-Identifier: LicenseRef-Vexel

# vexel_windows_runtime(): copies Qt's libraries and plug-ins and the compiler's runtime to the build tree and the
# installed tree. Windows has no run paths: a program finds its libraries in its own folder. With these copies, both
# trees run on a system where nothing is installed. Call this once, after Qt was found.

# Asks the compiler where its runtime libraries are.
function(vexel_compiler_runtime result)
    set(files)
    foreach(name IN ITEMS libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
        execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${name}
            OUTPUT_VARIABLE file
            OUTPUT_STRIP_TRAILING_WHITESPACE
            COMMAND_ERROR_IS_FATAL ANY
        )
        if(NOT IS_ABSOLUTE ${file})
            message(FATAL_ERROR "The compiler has no ${name}, which every program needs.")
        endif()
        file(REAL_PATH ${file} file)
        list(APPEND files ${file})
    endforeach()
    set(${result} ${files} PARENT_SCOPE)
endfunction()

function(vexel_windows_runtime)
    vexel_compiler_runtime(libraries)
    foreach(module IN ITEMS Core Gui Widgets Xml Network)
        get_target_property(library Qt6::${module} IMPORTED_LOCATION_RELEASE)
        list(APPEND libraries ${library})
    endforeach()
    cmake_path(GET library PARENT_PATH qt_programs)

    file(COPY ${libraries} DESTINATION ${VEXEL_OUTPUT_ROOT}/${CMAKE_INSTALL_BINDIR})
    install(FILES ${libraries} DESTINATION ${CMAKE_INSTALL_BINDIR})
    # qt.conf tells the programs where Qt's plug-ins are. The tests find them without it, because they are in another
    # folder than Qt's libraries. vexelctl needs the platform plug-in "offscreen".
    file(WRITE ${VEXEL_OUTPUT_ROOT}/${CMAKE_INSTALL_BINDIR}/qt.conf "[Paths]\nPlugins = ../plugins\n")
    install(FILES ${VEXEL_OUTPUT_ROOT}/${CMAKE_INSTALL_BINDIR}/qt.conf DESTINATION ${CMAKE_INSTALL_BINDIR})
    foreach(plugin IN ITEMS platforms/qwindows platforms/qoffscreen styles/qwindowsvistastyle imageformats/qico)
        set(file ${qt_programs}/../plugins/${plugin}.dll)
        cmake_path(GET plugin PARENT_PATH folder)
        file(COPY ${file} DESTINATION ${VEXEL_OUTPUT_ROOT}/plugins/${folder})
        install(FILES ${file} DESTINATION plugins/${folder})
    endforeach()
    # Qt's own texts in the languages of the product. Qt for Windows is built without them, and the files are the same on
    # every system.
    find_file(VEXEL_QT_TRANSLATION qtbase_de.qm PATHS ${qt_programs}/../translations /usr/share/qt6/translations
        NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
    if(VEXEL_QT_TRANSLATION)
        file(COPY ${VEXEL_QT_TRANSLATION} DESTINATION ${VEXEL_OUTPUT_ROOT}/${VEXEL_TRANSLATIONDIR})
        install(FILES ${VEXEL_QT_TRANSLATION} DESTINATION ${VEXEL_TRANSLATIONDIR})
    else()
        message(WARNING "qtbase_de.qm was not found: Qt's buttons and file dialogs will be English in every language.")
    endif()
    if(VEXEL_BUILD_TESTS)
        file(COPY ${qt_programs}/Qt6Test.dll DESTINATION ${VEXEL_OUTPUT_ROOT}/tests)
    endif()
endfunction()
