# SPDX-License-Identifier: MIT
# What is installed where. Components are Debian packages: the program with all entries that need nothing else, and one
# for each file manager that loads its entry by a package.
set(app_id com.havrel.Service)

install(TARGETS havrel RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT havrel)
if(TARGET havrel-service)
    install(TARGETS havrel-service RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT havrel)
endif()

foreach(folder IN ITEMS applications metainfo kio nemo file-manager)
    install(DIRECTORY ${HAVREL_ENTRIES}/${folder} DESTINATION ${CMAKE_INSTALL_DATADIR} COMPONENT havrel)
endforeach()
foreach(manager IN ITEMS nautilus nemo caja thunar)
    string(REPLACE thunar thunarx folder ${manager}-python)
    install(DIRECTORY ${HAVREL_ENTRIES}/${folder} DESTINATION ${CMAKE_INSTALL_DATADIR} COMPONENT havrel-${manager})
endforeach()

set(icons ${CMAKE_INSTALL_DATADIR}/icons/hicolor)
install(FILES resources/icons/${app_id}.svg DESTINATION ${icons}/scalable/apps COMPONENT havrel)
install(FILES resources/icons/${app_id}-symbolic.svg DESTINATION ${icons}/symbolic/apps COMPONENT havrel)

# What archives are to desktops: the file type, and its icon.
install(FILES resources/icons/application-x-zephra.svg DESTINATION ${icons}/scalable/mimetypes COMPONENT havrel)
install(FILES resources/mime/${app_id}.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages COMPONENT havrel)
install(CODE "
    set(folder \"${CMAKE_INSTALL_DATADIR}/mime\")
    include(\"${PROJECT_SOURCE_DIR}/cmake/refresh_file_types.cmake\")
" COMPONENT havrel)

foreach(program IN ITEMS havrel havrel-monitor havrel-scheduler havrel-service havrel-switchboard)
    install(FILES docs/man/${program}.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT havrel)
endforeach()
install(FILES resources/completions/havrel.bash
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME havrel COMPONENT havrel)
install(FILES resources/completions/_havrel
    DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions COMPONENT havrel)
install(FILES resources/completions/havrel.fish
    DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d COMPONENT havrel)
# What other programs may send to the service and to the components, for those who write them.
install(DIRECTORY resources/bus/
    DESTINATION ${CMAKE_INSTALL_DATADIR}/dbus-1/interfaces COMPONENT havrel FILES_MATCHING PATTERN "*.xml")
install(FILES CHANGELOG.md README.md DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT havrel)
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR} RENAME copyright COMPONENT havrel)
if(EXISTS ${PROJECT_SOURCE_DIR}/resources/help)
    install(DIRECTORY resources/help DESTINATION ${CMAKE_INSTALL_DATADIR}/havrel COMPONENT havrel)
endif()

# Starting the service: by the message bus, or by systemd on its behalf. The files name the program's full path, which is
# known only when it is installed. Both are found in every data folder of the session, wherever the prefix is.
# Made now, by whom the build belongs to: an installation as root must not leave a folder that packaging cannot write to.
file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/generated/bus)
function(install_started_by template folder program)
    install(CODE "
        set(program \"${program}\")
        set(template \"${PROJECT_SOURCE_DIR}/resources/bus/${template}.in\")
        set(made \"${PROJECT_BINARY_DIR}/generated/bus/${template}\")
        set(programs \"${CMAKE_INSTALL_BINDIR}\")
        set(folder \"${CMAKE_INSTALL_DATADIR}/${folder}\")
        include(\"${PROJECT_SOURCE_DIR}/cmake/install_started_by.cmake\")
    " COMPONENT havrel)
endfunction()
install_started_by(${app_id}.service dbus-1/services havrel-service)
install_started_by(havrel-service.service systemd/user havrel-service)
foreach(component IN ITEMS Switchboard Monitor Scheduler)
    string(TOLOWER havrel-${component} program)
    install(TARGETS ${program} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT havrel)
    install_started_by(com.havrel.${component}.service dbus-1/services ${program})
    install_started_by(${program}.service systemd/user ${program})
endforeach()

add_custom_target(uninstall
    COMMAND ${CMAKE_COMMAND} -D manifest=${PROJECT_BINARY_DIR}/install_manifest.txt
            -P ${PROJECT_SOURCE_DIR}/cmake/uninstall.cmake
    COMMENT "Removing what was installed from this build" VERBATIM)
