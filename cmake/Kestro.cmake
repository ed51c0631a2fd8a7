# The rules that every target of the project shares.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_AUTOMOC ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

find_program(CCACHE ccache)
if(CCACHE)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
endif()

add_library(kestro_options INTERFACE)
target_compile_options(kestro_options INTERFACE
    -Wall -Wextra -Wpedantic -Wnon-virtual-dtor -Woverloaded-virtual -Wold-style-cast -Werror
    # GCC 12 takes the inactive members of a std::variant for uninitialised ones when it optimises.
    $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>
    # What the QML compiler writes shadows its own parameters.
    $<$<NOT:$<BOOL:$<TARGET_PROPERTY:KESTRO_QML>>>:-Wshadow>)
target_compile_definitions(kestro_options INTERFACE
    QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_URL_CAST_FROM_STRING QT_NO_KEYWORDS
    QT_STRICT_ITERATORS QT_NO_FOREACH QT_DISABLE_DEPRECATED_BEFORE=0x060400)
target_include_directories(kestro_options INTERFACE ${CMAKE_SOURCE_DIR})

if(KESTRO_SANITIZE)
    add_compile_options(-fsanitize=${KESTRO_SANITIZE} -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${KESTRO_SANITIZE})
    if(NOT KESTRO_SANITIZE MATCHES "thread" AND NOT KESTRO_FUZZ)
        add_compile_options(-fno-sanitize-recover=all)
    endif()
endif()

# kestro_library(NAME LINK...): the static library of the folder that calls it, made of every source in it.
function(kestro_library name)
    file(GLOB sources CONFIGURE_DEPENDS *.cpp *.h)
    add_library(${name} STATIC ${sources})
    target_link_libraries(${name} PUBLIC ${ARGN} PRIVATE kestro_options)
    target_include_directories(${name} PUBLIC ${CMAKE_SOURCE_DIR})
    set_target_properties(${name} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 12)
endfunction()

# kestro_qml_module(NAME URI LINK...): the same with the folder's .qml files as the module URI, compiled ahead of time.
# A file whose name begins with a capital letter is a type; the one singleton per folder, Theme.qml, is told apart by its pragma.
function(kestro_qml_module name uri)
    file(GLOB sources CONFIGURE_DEPENDS *.cpp *.h)
    file(GLOB views RELATIVE ${CMAKE_CURRENT_SOURCE_DIR} CONFIGURE_DEPENDS *.qml)
    foreach(view ${views})
        file(STRINGS ${view} singleton REGEX "^pragma Singleton")
        if(singleton)
            set_source_files_properties(${view} PROPERTIES QT_QML_SINGLETON_TYPE TRUE)
        endif()
    endforeach()
    string(REPLACE "." "/" path ${uri})
    qt_add_library(${name} STATIC)
    qt_add_qml_module(${name}
        URI ${uri}
        VERSION 1.0
        RESOURCE_PREFIX /qt-project.org/imports
        OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/qml/${path}
        IMPORT_PATH ${CMAKE_BINARY_DIR}/qml
        DEPENDENCIES QtQuick
        SOURCES ${sources}
        QML_FILES ${views})
    target_link_libraries(${name} PUBLIC ${ARGN} PRIVATE kestro_options)
    set_target_properties(${name} PROPERTIES KESTRO_QML ON UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 12)
    # The registration that Qt generates includes headers by their bare names.
    target_include_directories(${name} PUBLIC ${CMAKE_SOURCE_DIR} PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
    set_property(GLOBAL APPEND PROPERTY KESTRO_QML_PLUGINS ${name}plugin)
endfunction()

# The modules are static: a program that shows views links their plugins too.
function(kestro_link_qml_modules target)
    get_property(plugins GLOBAL PROPERTY KESTRO_QML_PLUGINS)
    target_link_libraries(${target} PRIVATE ${plugins})
endfunction()

# kestro_test(NAME LABEL SOURCES... LINK libs...): one GoogleTest program, run by ctest as one test.
function(kestro_test name label)
    cmake_parse_arguments(arg "" "" "SOURCES;LINK" ${ARGN})
    add_executable(${name} ${arg_SOURCES})
    set_target_properties(${name} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 5)
    target_link_libraries(${name} PRIVATE kestro_options GTest::gmock ${arg_LINK})
    add_test(NAME ${name} COMMAND ${name})
    set_tests_properties(${name} PROPERTIES LABELS ${label} TIMEOUT 120)
endfunction()
