# SPDX-FileCopyrightText: 2026 Vexel
# SPDX-License-Identifier: LicenseRef-Vexel

# vexel_add_test(NAME [<folder>/]<name> [SOURCES <files>] [LIBRARIES <targets>] [DEFINITIONS <defs>] [DEPENDS <targets>]
#                [ALONE <why>] [XVFB] [WINDOW] [RESOURCE_LOCK <names>] [UNIX_ONLY <why>])
#
# Adds a Qt Test class and its ctest entry. The first file in SOURCES contains the class; the default is
# [<folder>/]<name>.cpp. The classes of a CMakeLists.txt share an executable, tests_ and the name of its folder, whose
# first argument names the file of the class to run (tests/support/testmain.h). ALONE gives the class a separate
# executable, and says why it needs one.
#
# Each entry runs on the offscreen platform and has its own configuration, data and home folders in the build folder, so
# that no test touches the user's files or reads the machine's settings. XVFB runs it in a real window instead, on a
# virtual X server with a window manager. DEPENDS names targets that the test starts or loads at run time. Tests with the
# same RESOURCE_LOCK, such as the product's fixed port, never run at the same time.
#
# For each entry, the target build_<name> builds everything that the entry needs. For entries without a Qt Test class,
# vexel_entry_needs(<name> <targets>) adds this target. `./test -R <name>` builds these targets.
#
# WINDOW is for tests of windows. On Windows they run a second time in real windows, as <name>_desktop, with the label
# "desktop". Such a run needs a display, which windows/test starts once for all of them.
#
# UNIX_ONLY is for tests that other systems do not support. They are not built there, and windows/test lists them with
# <why>, which also names the tests that cover the rest on Windows.
#
# Qt's headers take half of a test's compile time. All tests therefore share one precompiled header and link the same Qt
# modules, since these determine the headers' content. Qt Test would define macros with the folders of each test, which
# prevents sharing; they are removed, and no test uses them. -DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON shows whether a test
# includes everything it uses. Tests are not optimised, which would take longer than running them; the product's code is
# optimised as it is for users.
set(VEXEL_TEST_OPTIONS $<$<CXX_COMPILER_ID:GNU,Clang>:-O0>)
set(VEXEL_TEST_LIBRARIES vexel_options Qt6::Test Qt6::Widgets Qt6::Network Qt6::Xml)

function(vexel_use_test_headers target)
    set(headers vexel_testheaders)
    if(NOT TARGET ${headers})
        set_property(TARGET Qt6::Test PROPERTY INTERFACE_COMPILE_DEFINITIONS QT_TESTLIB_LIB)
        add_executable(${headers} EXCLUDE_FROM_ALL ${PROJECT_SOURCE_DIR}/tests/support/testheaders.cpp)
        target_link_libraries(${headers} PRIVATE ${VEXEL_TEST_LIBRARIES})
        target_compile_options(${headers} PRIVATE ${VEXEL_TEST_OPTIONS})
        target_precompile_headers(${headers} PRIVATE ${PROJECT_SOURCE_DIR}/tests/support/testheaders.h)
        set_target_properties(${headers} PROPERTIES AUTOMOC OFF AUTOUIC OFF AUTORCC OFF)
    endif()
    target_compile_options(${target} PRIVATE ${VEXEL_TEST_OPTIONS})
    target_precompile_headers(${target} REUSE_FROM ${headers})
    # Each test includes the output of moc itself, so this file is empty.
    set_source_files_properties(${CMAKE_CURRENT_BINARY_DIR}/${target}_autogen/mocs_compilation.cpp PROPERTIES
        SKIP_PRECOMPILE_HEADERS ON)
endfunction()

function(vexel_entry_needs name)
    add_custom_target(build_${name})
    if(ARGN)
        add_dependencies(build_${name} ${ARGN})
    endif()
endfunction()

function(vexel_add_test)
    cmake_parse_arguments(PARSE_ARGV 0 arg "XVFB;WINDOW" "NAME;ALONE;UNIX_ONLY"
        "SOURCES;LIBRARIES;DEFINITIONS;DEPENDS;RESOURCE_LOCK")

    set(source ${arg_NAME}.cpp)
    cmake_path(GET source STEM arg_NAME)
    if(arg_UNIX_ONLY AND NOT UNIX)
        set_property(GLOBAL APPEND_STRING PROPERTY VEXEL_UNIX_ONLY "${arg_NAME}: ${arg_UNIX_ONLY}\n")
        return()
    endif()
    if(NOT arg_SOURCES)
        set(arg_SOURCES ${source})
    endif()
    if(arg_ALONE)
        set(executable ${arg_NAME})
    else()
        cmake_path(GET CMAKE_CURRENT_SOURCE_DIR FILENAME folder)
        set(executable tests_${folder})
    endif()
    if(NOT TARGET ${executable})
        add_executable(${executable})
        target_link_libraries(${executable} PRIVATE ${VEXEL_TEST_LIBRARIES} vexel_testmain)
        vexel_use_test_headers(${executable})
        set_target_properties(${executable} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/tests)
    endif()
    target_sources(${executable} PRIVATE ${arg_SOURCES})
    target_link_libraries(${executable} PRIVATE ${arg_LIBRARIES})
    target_compile_definitions(${executable} PRIVATE ${arg_DEFINITIONS})
    # Product sources in a test are compiled as in the product, without the precompiled header.
    foreach(source IN LISTS arg_SOURCES)
        if(IS_ABSOLUTE ${source})
            set_source_files_properties(${source} PROPERTIES SKIP_PRECOMPILE_HEADERS ON)
        endif()
    endforeach()
    vexel_entry_needs(${arg_NAME} ${executable} ${arg_DEPENDS})

    list(GET arg_SOURCES 0 class)
    cmake_path(GET class STEM class)
    set(timeout 300)
    if(CMAKE_CROSSCOMPILING)
        # Under Wine, starting a process takes a hundred times as long.
        set(timeout 1200)
    endif()
    set(home ${PROJECT_BINARY_DIR}/tests/home/${arg_NAME})
    file(MAKE_DIRECTORY ${home})
    if(arg_XVFB)
        add_test(NAME ${arg_NAME}
            COMMAND ${PROJECT_SOURCE_DIR}/tests/support/with-xvfb $<TARGET_FILE:${executable}> ${class}
        )
        set(platform xcb)
        # The X keyboard library copies strings without a terminating null: correct, but it fails the check.
        set(strict_strings 0)
        # These take longest. ctest starts tests with a high cost first, so that they do not run alone at the end.
        set(cost 60)
    else()
        add_test(NAME ${arg_NAME} COMMAND ${executable} ${class})
        set(platform offscreen)
        set(strict_strings 1)
        # Tests with a lock wait for each other.
        set(cost 0)
        if(arg_RESOURCE_LOCK)
            set(cost 30)
        endif()
    endif()
    set(environment "HOME=${home};XDG_CONFIG_HOME=${home}/config;XDG_CONFIG_DIRS=${home}/system;XDG_DATA_HOME=${home}/data;XDG_RUNTIME_DIR=${home};LC_ALL=C.UTF-8;LANGUAGE=en;ASAN_OPTIONS=detect_leaks=1:strict_string_checks=${strict_strings}:detect_stack_use_after_return=1;LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/support/lsan.supp:print_suppressions=0;UBSAN_OPTIONS=print_stacktrace=1")
    set_tests_properties(${arg_NAME} PROPERTIES
        TIMEOUT ${timeout}
        COST ${cost}
        RESOURCE_LOCK "${arg_RESOURCE_LOCK}"
        ENVIRONMENT "QT_QPA_PLATFORM=${platform};${environment}"
    )
    if(WIN32 AND arg_WINDOW)
        add_test(NAME ${arg_NAME}_desktop COMMAND ${executable} ${class})
        vexel_entry_needs(${arg_NAME}_desktop build_${arg_NAME})
        # Only one window at a time has the keyboard focus.
        set_tests_properties(${arg_NAME}_desktop PROPERTIES
            TIMEOUT ${timeout}
            LABELS desktop
            RESOURCE_LOCK "desktop;${arg_RESOURCE_LOCK}"
            ENVIRONMENT "QT_QPA_PLATFORM=windows;${environment}"
        )
    endif()
endfunction()
