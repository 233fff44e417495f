# SPDX-License-Identifier: MIT
# Flags that every target of this project is compiled with. Warnings are errors through the presets.
add_library(havrel_flags INTERFACE)
target_compile_options(havrel_flags INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion
    -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align -Wundef -Wvla
    $<$<CXX_COMPILER_ID:GNU>:-Wduplicated-cond -Wlogical-op>
    $<$<CXX_COMPILER_ID:Clang>:-Wthread-safety>)
target_compile_definitions(havrel_flags INTERFACE
    QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_URL_CAST_FROM_STRING
    QT_NO_CAST_FROM_BYTEARRAY QT_NO_KEYWORDS QT_NO_FOREACH
    QT_NO_NARROWING_CONVERSIONS_IN_CONNECT)
