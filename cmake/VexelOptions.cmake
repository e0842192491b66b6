# SPDX-FileCopyrightText: 2026 Vexel
# SPDX-License-Identifier: LicenseRef-Vexel

# vexel_options: compile definitions and options for every target of this project. Link it PRIVATE.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_AUTOMOC ON)
set(CMAKE_AUTOUIC ON)
set(CMAKE_AUTORCC ON)
# The target "autogen" makes the sources that moc and uic generate, for tools/lint; none of them needs a library.
set(CMAKE_GLOBAL_AUTOGEN_TARGET ON)
set(CMAKE_AUTOGEN_ORIGIN_DEPENDS OFF)

add_library(vexel_options INTERFACE)
target_compile_features(vexel_options INTERFACE cxx_std_20)
target_include_directories(vexel_options INTERFACE ${PROJECT_SOURCE_DIR})
target_compile_definitions(vexel_options INTERFACE
    QT_NO_CAST_FROM_ASCII
    QT_NO_CAST_TO_ASCII
    QT_NO_URL_CAST_FROM_STRING
    QT_NO_CAST_FROM_BYTEARRAY
    QT_NO_FOREACH
    QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
    QT_STRICT_ITERATORS
    QT_DEPRECATED_WARNINGS
    QT_DISABLE_DEPRECATED_BEFORE=0x060400
)

if(MSVC)
    target_compile_options(vexel_options INTERFACE /W4 /permissive- /utf-8)
else()
    target_compile_options(vexel_options INTERFACE
        -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wold-style-cast -Wcast-align -Woverloaded-virtual
        -Wconversion -Wsign-conversion -Wformat=2)
endif()

if(VEXEL_WARNINGS_AS_ERRORS)
    target_compile_options(vexel_options INTERFACE $<IF:$<CXX_COMPILER_ID:MSVC>,/WX,-Werror>)
endif()

if(VEXEL_SANITIZE)
    target_compile_definitions(vexel_options INTERFACE VEXEL_SANITIZED)
    target_compile_options(vexel_options INTERFACE
        -fsanitize=${VEXEL_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(vexel_options INTERFACE -fsanitize=${VEXEL_SANITIZE})
endif()
