# SPDX-License-Identifier: MIT
# Runs at installation: has the desktops' programs learn the file type that was installed. Packages leave that to the
# package manager. Given: folder (of file types, below the prefix).
if(NOT "$ENV{DESTDIR}" STREQUAL "")
    return()
endif()
find_program(refresh update-mime-database)
if(NOT refresh)
    message(STATUS "Without update-mime-database desktops do not learn what a file of an archive is")
    return()
endif()
get_filename_component(prefix "${CMAKE_INSTALL_PREFIX}" ABSOLUTE)
execute_process(COMMAND "${refresh}" "${prefix}/${folder}"
    RESULT_VARIABLE status OUTPUT_QUIET ERROR_VARIABLE errors)
if(NOT status EQUAL 0)
    message(WARNING "update-mime-database fails: ${errors}")
endif()
