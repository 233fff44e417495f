# SPDX-License-Identifier: MIT
# Runs at installation: writes a file that names the full path of the service, and installs it. Given: template, made
# (where it is written), programs and folder (below the prefix).
get_filename_component(prefix "${CMAKE_INSTALL_PREFIX}" ABSOLUTE)
set(HAVREL_SERVICE_PROGRAM "${prefix}/${programs}/havrel-service")
if(HAVREL_SERVICE_PROGRAM MATCHES "[\"'\\%$;\n]")
    message(FATAL_ERROR "The message bus could not start a program below ${prefix}")
endif()
configure_file("${template}" "${made}" @ONLY)
file(INSTALL DESTINATION "${prefix}/${folder}" TYPE FILE FILES "${made}")
