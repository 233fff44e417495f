# SPDX-License-Identifier: MIT
# Removes what the last installation from a build wrote, and the folders of ours that are empty then. Given: manifest.
cmake_minimum_required(VERSION 3.25)
if(NOT EXISTS "${manifest}")
    message(FATAL_ERROR "Nothing was installed from this build: there is no ${manifest}")
endif()
file(STRINGS "${manifest}" files)
foreach(file IN LISTS files)
    file(REMOVE "$ENV{DESTDIR}${file}")
    get_filename_component(folder "$ENV{DESTDIR}${file}" DIRECTORY)
    while(folder MATCHES "/havrel(/|$)")
        list(APPEND folders "${folder}")
        get_filename_component(folder "${folder}" DIRECTORY)
    endwhile()
endforeach()
list(REMOVE_DUPLICATES folders)
list(SORT folders ORDER DESCENDING) # what is inside comes first
foreach(folder IN LISTS folders)
    execute_process(COMMAND rmdir "${folder}" ERROR_QUIET) # which leaves those that hold something
endforeach()
file(REMOVE "${manifest}")
