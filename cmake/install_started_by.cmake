# SPDX-License-Identifier: MIT
# Runs at installation: writes a file that names the full path of a program, and installs it. Given: template, made
# (where it is written), program (its name), programs and folder (below the prefix).
get_filename_component(prefix "${CMAKE_INSTALL_PREFIX}" ABSOLUTE)
set(HAVREL_PROGRAM "${prefix}/${programs}/${program}")
if(HAVREL_PROGRAM MATCHES "[\"'\\%$;\n]")
    message(FATAL_ERROR "The message bus could not start a program below ${prefix}")
endif()
# In a folder of its own: tests install the same build to several places at the same time.
string(RANDOM LENGTH 16 own)
get_filename_component(name "${made}" NAME)
set(own "${made}-${own}")
configure_file("${template}" "${own}/${name}" @ONLY)
file(INSTALL DESTINATION "${prefix}/${folder}" TYPE FILE FILES "${own}/${name}")
file(REMOVE_RECURSE "${own}")
