# SPDX-License-Identifier: MIT
# Debian packages: cpack -G DEB in the build folder.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME havrel)
set(CPACK_PACKAGE_VENDOR Havrel)
set(CPACK_PACKAGE_CONTACT "Havrel <packages@havrel.example>")
set(CPACK_SET_DESTDIR ON) # so that files which name a path name the one where it will be
set(CPACK_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL havrel havrel-nautilus havrel-nemo havrel-caja havrel-thunar)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(CPACK_COMPONENT_HAVREL_DESCRIPTION "desktop companion of the Havrel backup product
 Brings the commands of the backup to the context menus of file managers, and
 lets people say how each file and folder is captured.")
set(CPACK_DEBIAN_HAVREL_PACKAGE_NAME havrel)
set(CPACK_DEBIAN_HAVREL_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_HAVREL_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_HAVREL_PACKAGE_DEPENDS "default-dbus-session-bus | dbus-session-bus")
set(CPACK_DEBIAN_HAVREL_PACKAGE_RECOMMENDS "libqt6svg6, qt6-qpa-plugins, restic, shared-mime-info, xdg-utils")
set(CPACK_DEBIAN_HAVREL_PACKAGE_SUGGESTS "havrel-nautilus, havrel-nemo, havrel-caja, havrel-thunar")

# add_menu_package(<file manager> <its package> <package that loads the entry>)
function(add_menu_package manager package loader)
    string(TOUPPER ${manager} key)
    set(prefix CPACK_DEBIAN_HAVREL-${key}_PACKAGE)
    set(CPACK_COMPONENT_HAVREL-${key}_DESCRIPTION "commands of the Havrel backup in the menus of ${package}
 Shows the commands for any number of selected files and folders." PARENT_SCOPE)
    set(${prefix}_NAME havrel-${manager} PARENT_SCOPE)
    set(${prefix}_SECTION utils PARENT_SCOPE)
    set(${prefix}_ARCHITECTURE all PARENT_SCOPE)
    set(${prefix}_DEPENDS "havrel (>= ${PROJECT_VERSION}), ${loader}" PARENT_SCOPE)
    set(${prefix}_ENHANCES ${package} PARENT_SCOPE)
endfunction()
add_menu_package(nautilus nautilus python3-nautilus)
add_menu_package(nemo nemo nemo-python)
add_menu_package(caja caja python3-caja)
add_menu_package(thunar thunar "thunarx-python, gir1.2-thunarx-3.0")

include(CPack)
