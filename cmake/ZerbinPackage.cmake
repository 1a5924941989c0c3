# What `cmake --install` puts down besides the programs: the static core libraries with their
# headers, the plug-in's public header, the CMake package that hosts find with
# find_package(Zerbin) and zerbin.pc for pkg-config. Every rule names the install component
# of the Debian package it belongs to (cmake/ZerbinDebian.cmake):
#     runtime  libzerbin.so.1 and the shipped data
#     dev      headers, libzerbin.so, the static libraries, the CMake package, zerbin.pc
#     command  the zerbin command
#     studio   zerbin-studio and the plug-in Zerbin.so

include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(ZERBIN_CMAKE_DESTINATION "${CMAKE_INSTALL_LIBDIR}/cmake/Zerbin")
set(ZERBIN_HEADER_DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/zerbin")

# Headers keep their folders, so that "interfaces/IAppObject.h" resolves as in the tree.
# The windows stay out: a static Qt library would make every C++ host of the package build
# against Qt's development files, and its compiled-in images would travel as loose object
# files; hosts get the windows through the plug-in.
set(zerbin_installed_targets zerbin_base zerbin_platform zerbin_datatypes zerbin_connections
                             zerbin_parameters zerbin_app_object zerbin_core zerbin_plugin_headers)
foreach(folder IN ITEMS interfaces base platform datatypes connections parameters app_object)
    install(DIRECTORY "${PROJECT_SOURCE_DIR}/${folder}/"
            DESTINATION "${ZERBIN_HEADER_DESTINATION}/${folder}" COMPONENT dev
            FILES_MATCHING PATTERN "*.h" PATTERN "resources" EXCLUDE)
endforeach()

# True when the plug-in shows the windows, so that a host knows --show has something to open.
set(ZERBIN_PACKAGE_WITH_EDITORS OFF)
if(TARGET zerbin_editors)
    set(ZERBIN_PACKAGE_WITH_EDITORS ON)
endif()

# Zerbin::core, Zerbin::base, ... : the target names without their "zerbin_".
foreach(target IN LISTS zerbin_installed_targets)
    string(REGEX REPLACE "^zerbin_" "" export_name "${target}")
    set_target_properties(${target} PROPERTIES EXPORT_NAME "${export_name}")
endforeach()

install(TARGETS ${zerbin_installed_targets}
        EXPORT ZerbinTargets
        ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT dev
        INCLUDES DESTINATION "${ZERBIN_HEADER_DESTINATION}")
install(EXPORT ZerbinTargets NAMESPACE Zerbin:: DESTINATION "${ZERBIN_CMAKE_DESTINATION}"
        COMPONENT dev)

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
        DESTINATION "${ZERBIN_CMAKE_DESTINATION}" COMPONENT dev)

# pkg-config finds the prefix from where the file lies, so a moved prefix works as for CMake.
file(RELATIVE_PATH zerbin_pc_to_prefix "${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}/pkgconfig"
     "${CMAKE_INSTALL_PREFIX}")
configure_file("${CMAKE_CURRENT_LIST_DIR}/zerbin.pc.in" "${PROJECT_BINARY_DIR}/zerbin.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/zerbin.pc"
        DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT dev)
