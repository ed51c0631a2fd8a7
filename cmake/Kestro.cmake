# The rules that every target of the project shares.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

find_program(CCACHE ccache)
if(CCACHE)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
endif()

add_library(kestro_options INTERFACE)
target_compile_options(kestro_options INTERFACE
    -Wall -Wextra -Wpedantic -Wnon-virtual-dtor -Woverloaded-virtual -Wold-style-cast -Werror
    # GCC 12 takes the inactive members of a std::variant for uninitialised ones when it optimises.
    $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
target_compile_definitions(kestro_options INTERFACE
    QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_URL_CAST_FROM_STRING QT_NO_KEYWORDS
    QT_STRICT_ITERATORS QT_NO_FOREACH QT_DISABLE_DEPRECATED_BEFORE=0x060400)
target_include_directories(kestro_options INTERFACE ${CMAKE_SOURCE_DIR})

if(KESTRO_SANITIZE)
    add_compile_options(${KESTRO_SANITIZE} -fno-omit-frame-pointer)
    add_link_options(${KESTRO_SANITIZE})
endif()

# kestro_units(TARGET PATTERN...): compiles the sources that match in groups of KESTRO_UNIT_FILES, for a source costs
# less than the headers that it includes. A group names its sources from the project's root, so that its text is the
# same wherever the project lies.
function(kestro_units target)
    file(GLOB sources RELATIVE ${CMAKE_SOURCE_DIR} CONFIGURE_DEPENDS ${ARGN})
    list(LENGTH sources count)
    math(EXPR groups "(${count} + ${KESTRO_UNIT_FILES} - 1) / ${KESTRO_UNIT_FILES}")
    set(first 0)
    while(groups GREATER 0)
        math(EXPR size "(${count} - ${first} + ${groups} - 1) / ${groups}")
        list(SUBLIST sources ${first} ${size} group)
        math(EXPR first "${first} + ${size}")
        math(EXPR groups "${groups} - 1")
        if(size EQUAL 1)
            set(unit ${CMAKE_SOURCE_DIR}/${group})
        else()
            set(unit ${CMAKE_BINARY_DIR}/units/${target}-${groups}.cpp)
            list(TRANSFORM group REPLACE ".+" "#include \"\\0\"\n")
            list(JOIN group "" text)
            file(CONFIGURE OUTPUT ${unit} CONTENT "${text}" @ONLY)
        endif()
        # What the QML compiler writes shadows its own parameters; what stands here does not.
        set_source_files_properties(${unit} PROPERTIES
            SKIP_AUTOGEN ON SKIP_UNITY_BUILD_INCLUSION ON COMPILE_OPTIONS -Wshadow)
        target_sources(${target} PRIVATE ${unit})
    endwhile()
endfunction()

# kestro_layer(NAME FOLDERS folder... LINK libs...): the static library of all the sources in the folders.
function(kestro_layer name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "FOLDERS;LINK")
    add_library(${name} STATIC)
    target_link_libraries(${name} PUBLIC ${arg_LINK} PRIVATE kestro_options)
    target_include_directories(${name} PUBLIC ${CMAKE_SOURCE_DIR})
    list(TRANSFORM arg_FOLDERS PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
    list(TRANSFORM arg_FOLDERS APPEND /*.h OUTPUT_VARIABLE patterns)
    file(GLOB headers CONFIGURE_DEPENDS ${patterns})
    target_sources(${name} PRIVATE ${headers})
    list(TRANSFORM arg_FOLDERS APPEND /*.cpp OUTPUT_VARIABLE patterns)
    kestro_units(${name} ${patterns})
endfunction()

# kestro_views(TARGET URI FOLDERS folder...): the views of each folder as the QML module URI.<folder>, compiled ahead of
# time. The types that the target's headers give to QML are the module URI, which every folder's module brings along.
# One target for all: a module of Qt's own making a folder costs a second library, seven sources and a run of its tools.
function(kestro_views target uri)
    cmake_parse_arguments(PARSE_ARGV 2 arg "" "" "FOLDERS")
    set(out ${CMAKE_BINARY_DIR}/qml/${uri})
    foreach(folder ${arg_FOLDERS})
        file(GLOB views RELATIVE ${CMAKE_CURRENT_SOURCE_DIR} CONFIGURE_DEPENDS ${folder}/*.qml)
        if(NOT views)
            continue()
        endif()
        set(lines "module ${uri}.${folder}\nprefer :/qt-project.org/imports/${uri}/${folder}/\nimport ${uri} auto\n")
        foreach(view ${views})
            cmake_path(GET view STEM type)
            file(STRINGS ${view} singleton REGEX "^pragma Singleton")
            string(APPEND lines "$<$<BOOL:${singleton}>:singleton >${type} 1.0 ${type}.qml\n")
        endforeach()
        file(GENERATE OUTPUT ${out}/${folder}/qmldir CONTENT "${lines}")
        set_source_files_properties(${out}/${folder}/qmldir PROPERTIES QT_RESOURCE_ALIAS ${folder}/qmldir)
        set_source_files_properties(${views} PROPERTIES QT_QML_SKIP_QMLDIR_ENTRY TRUE)
        list(APPEND all_views ${views})
        list(APPEND qmldirs ${out}/${folder}/qmldir)
    endforeach()
    set_target_properties(${target} PROPERTIES
        AUTOMOC ON UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE ${KESTRO_UNIT_FILES})
    qt_add_qml_module(${target}
        URI ${uri}
        VERSION 1.0
        NO_PLUGIN
        RESOURCE_PREFIX /qt-project.org/imports
        OUTPUT_DIRECTORY ${out}
        IMPORT_PATH ${CMAKE_BINARY_DIR}/qml
        DEPENDENCIES QtQuick
        QML_FILES ${all_views}
        RESOURCES ${qmldirs})
    # The registration that Qt generates includes headers by their bare names.
    target_include_directories(${target} PRIVATE ${arg_FOLDERS})
endfunction()

# kestro_test(NAME LABEL PATTERN... LINK libs...): one GoogleTest program of the sources that match.
function(kestro_test name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "LABEL" "SOURCES;LINK")
    add_executable(${name})
    kestro_units(${name} ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE kestro_options GTest::gmock ${arg_LINK})
    if(arg_LABEL)
        add_test(NAME ${name} COMMAND ${name})
        set_tests_properties(${name} PROPERTIES LABELS ${arg_LABEL} TIMEOUT 120)
    endif()
endfunction()
