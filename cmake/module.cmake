# SPDX-License-Identifier: MIT
# add_module(<name> [UNFUZZED] SOURCES ... [FORMS <form>.ui...] [LINKS <module>...] [EXTERNAL <target>...])
#
# One call makes one room of the house: library havrel::<name>, its warning flags, its place in the order of the floors
# (a module may link only modules that were added before it), and a check that every header compiles alone. UNFUZZED: no
# fuzz target links it.
# Sources are given relative to the root, because one module may stand in more than one folder. A source includes the
# form resources/Name.ui as <ui_Name.h>.
set_property(GLOBAL PROPERTY HAVREL_LAYERS "")
# Saves two fifths of the compiling, but hides that a source misses an include: the presets clang, fuzz and release do
# without. A compiler cache makes nothing of it.
option(HAVREL_PRECOMPILE "Precompile what nearly every source includes" OFF)

# precompile_often_included(<target> <kind> [<header>...]): once for all targets of a kind, because each precompiling costs
# several seconds. The first of a kind owns what is precompiled; the kinds differ in how their code is placed (a library's
# is independent of its position).
function(precompile_often_included target kind)
    if(NOT HAVREL_PRECOMPILE OR CMAKE_CXX_COMPILER_LAUNCHER)
        return()
    endif()
    get_property(owner GLOBAL PROPERTY HAVREL_PRECOMPILED_FOR_${kind})
    if(owner)
        target_precompile_headers(${target} REUSE_FROM ${owner})
        return()
    endif()
    set_property(GLOBAL PROPERTY HAVREL_PRECOMPILED_FOR_${kind} ${target})
    target_precompile_headers(${target} PRIVATE <QByteArray> <QDateTime> <QHash> <QList> <QString> <QStringList>
        <QVariant> <algorithm> <array> <atomic> <chrono> <functional> <map> <memory> <mutex> <optional> <string>
        <vector> ${ARGN})
endfunction()

# A source includes its own header first: where nothing is precompiled, as for the fuzz targets, building it shows that
# the header stands alone. That leaves headers without a source, and the modules that no fuzz target links.
function(headers_to_verify result isUnfuzzed)
    set(headers ${ARGN})
    list(FILTER headers INCLUDE REGEX "\\.h$")
    if(NOT isUnfuzzed)
        set(shown ${ARGN})
        list(FILTER shown INCLUDE REGEX "\\.cpp$")
        list(TRANSFORM shown REPLACE "\\.cpp$" ".h")
        list(REMOVE_ITEM headers ${shown})
    endif()
    set(${result} ${headers} PARENT_SCOPE)
endfunction()

function(add_module name)
    cmake_parse_arguments(ARG "UNFUZZED" "" "SOURCES;FORMS;LINKS;EXTERNAL" ${ARGN})
    get_property(layers GLOBAL PROPERTY HAVREL_LAYERS)
    foreach(dep IN LISTS ARG_LINKS)
        if(NOT dep IN_LIST layers)
            message(FATAL_ERROR "${name} may not link ${dep}: it is not a lower floor")
        endif()
    endforeach()
    list(TRANSFORM ARG_SOURCES PREPEND "${PROJECT_SOURCE_DIR}/")
    list(TRANSFORM ARG_FORMS PREPEND "${PROJECT_SOURCE_DIR}/")
    add_library(${name} STATIC ${ARG_SOURCES} ${ARG_FORMS})
    if(ARG_FORMS)
        set_target_properties(${name} PROPERTIES AUTOUIC ON AUTOUIC_SEARCH_PATHS "${PROJECT_SOURCE_DIR}/resources")
    endif()
    add_library(havrel::${name} ALIAS ${name})
    set_target_properties(${name} PROPERTIES OUTPUT_NAME havrel_${name})
    target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR})
    list(TRANSFORM ARG_LINKS PREPEND havrel::)
    target_link_libraries(${name} PUBLIC ${ARG_LINKS} ${ARG_EXTERNAL} PRIVATE havrel_flags)
    precompile_often_included(${name} libraries)
    set_property(GLOBAL APPEND PROPERTY HAVREL_LAYERS ${name})

    headers_to_verify(headers ${ARG_UNFUZZED} ${ARG_SOURCES})
    if(headers)
        target_sources(${name} PUBLIC FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR} FILES ${headers})
        set_target_properties(${name} PROPERTIES VERIFY_INTERFACE_HEADER_SETS ON)
    endif()
endfunction()

# add_module_tests(<name> [WINDOWS [DISPLAY]] MODULES <module>... SOURCES <unit>_test.cpp... [LINKS <target>...])
# Sources are given relative to tests/. WINDOWS: the tests share an application object that can show
# windows, offscreen. DISPLAY: they run as one, on an X server of their own with a
# window manager.
function(add_module_tests name)
    cmake_parse_arguments(ARG "WINDOWS;DISPLAY" "" "SOURCES;MODULES;LINKS" ${ARGN})
    list(TRANSFORM ARG_SOURCES PREPEND "${PROJECT_SOURCE_DIR}/tests/")
    list(TRANSFORM ARG_MODULES PREPEND havrel::)
    set(main GTest::gtest_main)
    if(ARG_WINDOWS)
        set(main Qt6::Widgets Qt6::Test GTest::gtest)
        list(APPEND ARG_SOURCES "${PROJECT_SOURCE_DIR}/tests/support/window_tests_main.cpp")
    endif()
    add_executable(${name}_tests ${ARG_SOURCES})
    target_link_libraries(${name}_tests PRIVATE ${ARG_MODULES} ${ARG_LINKS} GTest::gmock ${main} havrel_flags)
    precompile_often_included(${name}_tests tests <gmock/gmock.h> <gtest/gtest.h>)
    if(ARG_DISPLAY)
        add_test(NAME ${name} COMMAND ${PROJECT_SOURCE_DIR}/scripts/with-display $<TARGET_FILE:${name}_tests>)
        set_tests_properties(${name} PROPERTIES LABELS "display;${name}")
        return()
    endif()
    gtest_discover_tests(${name}_tests TEST_PREFIX "${name}." DISCOVERY_TIMEOUT 60 PROPERTIES LABELS "unit;${name}")
endfunction()
