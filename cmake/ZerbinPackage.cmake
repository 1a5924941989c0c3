# What `cmake --install` puts down besides the programs: the static core libraries with their
# headers, the plug-in's public header, and the CMake package that hosts find with
# find_package(Zerbin). CPack turns the same into a .deb.

include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(ZERBIN_CMAKE_DESTINATION "${CMAKE_INSTALL_LIBDIR}/cmake/Zerbin")
set(ZERBIN_HEADER_DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/zerbin")

# Headers keep their folders, so that "interfaces/IAppObject.h" resolves as in the tree.
set(zerbin_installed_targets zerbin_base zerbin_platform zerbin_datatypes zerbin_connections
                             zerbin_parameters zerbin_app_object zerbin_core zerbin_plugin_headers)
foreach(folder IN ITEMS interfaces base platform datatypes connections parameters app_object)
    install(DIRECTORY "${PROJECT_SOURCE_DIR}/${folder}/"
            DESTINATION "${ZERBIN_HEADER_DESTINATION}/${folder}"
            FILES_MATCHING PATTERN "*.h")
endforeach()

set(ZERBIN_PACKAGE_WITH_EDITORS OFF)
if(TARGET zerbin_editors)
    set(ZERBIN_PACKAGE_WITH_EDITORS ON)
    list(APPEND zerbin_installed_targets zerbin_editors)
    # The compiled-in images of a static Qt library come as object libraries that its users
    # link; they travel with it.
    get_target_property(editor_links zerbin_editors INTERFACE_LINK_LIBRARIES)
    foreach(item IN LISTS editor_links)
        string(REGEX MATCH "zerbin_editors_resources_[0-9]+" resources "${item}")
        if(resources AND TARGET ${resources})
            list(APPEND zerbin_editor_resources ${resources})
        endif()
    endforeach()
    list(REMOVE_DUPLICATES zerbin_editor_resources)
    install(DIRECTORY "${PROJECT_SOURCE_DIR}/editors/"
            DESTINATION "${ZERBIN_HEADER_DESTINATION}/editors" FILES_MATCHING PATTERN "*.h")
endif()

# Zerbin::core, Zerbin::base, ... : the target names without their "zerbin_".
foreach(target IN LISTS zerbin_installed_targets)
    string(REGEX REPLACE "^zerbin_" "" export_name "${target}")
    set_target_properties(${target} PROPERTIES EXPORT_NAME "${export_name}")
endforeach()

install(TARGETS ${zerbin_installed_targets} ${zerbin_editor_resources}
        EXPORT ZerbinTargets
        OBJECTS DESTINATION "${CMAKE_INSTALL_LIBDIR}/zerbin/objects"
        ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}"
        LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
        INCLUDES DESTINATION "${ZERBIN_HEADER_DESTINATION}")
install(EXPORT ZerbinTargets NAMESPACE Zerbin:: DESTINATION "${ZERBIN_CMAKE_DESTINATION}")

set(ZERBIN_PLUGIN_FILE "${ZERBIN_PLUGIN_DESTINATION}/Zerbin.so")
set(ZERBIN_DATA_DIR "${CMAKE_INSTALL_DATADIR}/zerbin")
configure_package_config_file("${CMAKE_CURRENT_LIST_DIR}/ZerbinConfig.cmake.in"
    "${PROJECT_BINARY_DIR}/ZerbinConfig.cmake"
    INSTALL_DESTINATION "${ZERBIN_CMAKE_DESTINATION}"
    PATH_VARS ZERBIN_PLUGIN_FILE ZERBIN_DATA_DIR)
# 1.x hosts keep working with every 1.y.
write_basic_package_version_file("${PROJECT_BINARY_DIR}/ZerbinConfigVersion.cmake"
    COMPATIBILITY SameMajorVersion)
install(FILES "${PROJECT_BINARY_DIR}/ZerbinConfig.cmake"
              "${PROJECT_BINARY_DIR}/ZerbinConfigVersion.cmake"
        DESTINATION "${ZERBIN_CMAKE_DESTINATION}")

# --- The .deb ---------------------------------------------------------------------------------

set(CPACK_PACKAGE_NAME "zerbin")
set(CPACK_PACKAGE_VENDOR "Zerbin")
set(CPACK_PACKAGE_CONTACT "Zerbin maintainers <zerbin@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY
    "generic application object for building-automation controller blocks")
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_PACKAGING_INSTALL_PREFIX "/usr")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION "devel")
# The libraries' own needs come from dpkg-shlibdeps; the headers and the CMake package need
# pugixml's (and, with the windows, Qt's) development files.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(zerbin_deb_depends "libpugixml-dev")
if(ZERBIN_PACKAGE_WITH_EDITORS)
    string(APPEND zerbin_deb_depends ", qt6-base-dev")
endif()
set(CPACK_DEBIAN_PACKAGE_DEPENDS "${zerbin_deb_depends}")
include(CPack)
