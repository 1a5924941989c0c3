# The Debian packages CPack makes of the install, one for each install component:
#
#     libzerbin1     runtime  libzerbin.so.1 and the shipped data under share/zerbin
#     libzerbin-dev  dev      headers, libzerbin.so, the static libraries, the CMake package,
#                             zerbin.pc
#     zerbin         command  the zerbin command and its manual page
#     zerbin-studio  studio   zerbin-studio, the plug-in Zerbin.so, the desktop entry, icon,
#                             metainfo and manual page
#
#     cpack -G DEB --config build/CPackConfig.cmake
#
# What only a Debian package carries (copyright, changelog, lintian overrides, all from
# cmake/debian/) is left out of a plain `cmake --install`.

include(GNUInstallDirs)

set(ZERBIN_DEBIAN_REVISION 1)
set(zerbin_deb_version "${PROJECT_VERSION}-${ZERBIN_DEBIAN_REVISION}")
set(zerbin_deb_source "${PROJECT_SOURCE_DIR}/cmake/debian")

# The packages say which version they are from the changelog's first entry as well as from
# their control data; a release that bumped one and forgot the other would ship both.
file(STRINGS "${zerbin_deb_source}/changelog" zerbin_changelog_head LIMIT_COUNT 1)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${zerbin_deb_source}/changelog")
if(NOT zerbin_changelog_head MATCHES "^zerbin \\(([^)]*)\\) "
   OR NOT CMAKE_MATCH_1 STREQUAL zerbin_deb_version)
    message(FATAL_ERROR "cmake/debian/changelog: the first entry is not version "
                        "${zerbin_deb_version}: '${zerbin_changelog_head}'")
endif()

# Debian wants documents compressed with gzip -9n: no name or time stamp in the header, so that
# the same text gives the same bytes.
set(zerbin_compressed "")
function(zerbin_gzip source output)
    get_filename_component(name "${output}" NAME_WLE)
    get_filename_component(folder "${output}" DIRECTORY)
    add_custom_command(OUTPUT "${output}"
        COMMAND "${CMAKE_COMMAND}" -E copy "${source}" "${folder}/${name}"
        COMMAND gzip -9nf "${folder}/${name}"
        DEPENDS "${source}" VERBATIM)
    set(zerbin_compressed ${zerbin_compressed} "${output}" PARENT_SCOPE)
endfunction()

set(zerbin_deb_out "${PROJECT_BINARY_DIR}/debian")
zerbin_gzip("${zerbin_deb_source}/changelog" "${zerbin_deb_out}/changelog.Debian.gz")

# The manual pages take the version from the project.
foreach(page IN ITEMS zerbin zerbin-studio)
    configure_file("${PROJECT_SOURCE_DIR}/man/${page}.1" "${zerbin_deb_out}/man/${page}.1"
                   @ONLY)
    zerbin_gzip("${zerbin_deb_out}/man/${page}.1" "${PROJECT_BINARY_DIR}/man/${page}.1.gz")
endforeach()
add_custom_target(zerbin_compressed_documents ALL DEPENDS ${zerbin_compressed})

install(FILES "${PROJECT_BINARY_DIR}/man/zerbin.1.gz"
        DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT command)
set(zerbin_deb_packages runtime libzerbin1 dev libzerbin-dev command zerbin)
if(ZERBIN_WITH_QT)
    install(FILES "${PROJECT_BINARY_DIR}/man/zerbin-studio.1.gz"
            DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT studio)
    list(APPEND zerbin_deb_packages studio zerbin-studio)
endif()

set(CPACK_COMPONENTS_ALL "")
while(zerbin_deb_packages)
    list(POP_FRONT zerbin_deb_packages component package)
    list(APPEND CPACK_COMPONENTS_ALL ${component})
    string(TOUPPER "${component}" upper)
    set(CPACK_DEBIAN_${upper}_PACKAGE_NAME "${package}")
    install(FILES "${zerbin_deb_source}/copyright" "${zerbin_deb_out}/changelog.Debian.gz"
            DESTINATION "${CMAKE_INSTALL_DATAROOTDIR}/doc/${package}"
            COMPONENT ${component} EXCLUDE_FROM_ALL)
    # lintian reads one file of overrides a package: those of all four, then its own.
    set(overrides "${zerbin_deb_source}/lintian-overrides")
    if(EXISTS "${zerbin_deb_source}/${package}.lintian-overrides")
        list(APPEND overrides "${zerbin_deb_source}/${package}.lintian-overrides")
    endif()
    set(text "")
    foreach(file IN LISTS overrides)
        file(READ "${file}" part)
        string(APPEND text "${part}")
    endforeach()
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${overrides})
    file(CONFIGURE OUTPUT "${zerbin_deb_out}/lintian/${package}" CONTENT "${text}" @ONLY)
    install(FILES "${zerbin_deb_out}/lintian/${package}"
            DESTINATION "${CMAKE_INSTALL_DATAROOTDIR}/lintian/overrides"
            COMPONENT ${component} EXCLUDE_FROM_ALL)
endwhile()

set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_PACKAGE_NAME "zerbin")
set(CPACK_PACKAGE_VENDOR "Zerbin")
set(CPACK_PACKAGE_CONTACT "Zerbin maintainers <maintainers@zerbin.org>")
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_DEBIAN_PACKAGE_RELEASE "${ZERBIN_DEBIAN_REVISION}")
set(CPACK_DEBIAN_PACKAGE_SOURCE "zerbin")
set(CPACK_PACKAGING_INSTALL_PREFIX "/usr")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_PRIORITY "optional")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_STRIP_FILES ON)
# Run-time needs come from dpkg-shlibdeps, so that they name the run-time packages and the
# versions the binaries were linked against.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_DEV_PACKAGE_SHLIBDEPS OFF)
# libzerbin1's shlibs file: a program linked against libzerbin.so.1 depends on this very
# version, since the engine's C++ symbols (ZERBIN_PRIVATE_1) hold for one release only.
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY "=")

# CPack writes a postinst and a postrm that run ldconfig for any shared object under /usr/lib,
# unless the package brings its own; Debian has the library's package activate the ldconfig
# trigger instead, and the plug-in, loaded by path, needs neither. Naming scripts that do not
# exist turns CPack's off (it warns that it finds no such file) and adds none.
set(zerbin_no_ldconfig_scripts "${zerbin_deb_out}/no-scripts/postinst"
                               "${zerbin_deb_out}/no-scripts/postrm")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA "${zerbin_deb_source}/triggers"
                                               ${zerbin_no_ldconfig_scripts})
set(CPACK_DEBIAN_STUDIO_PACKAGE_CONTROL_EXTRA ${zerbin_no_ldconfig_scripts})

# The paragraph every package's description opens with.
set(zerbin_deb_about
"Zerbin is the generic application object of a configuration tool for
building-automation controllers: one object serves every function-block type,
and a block type is a definition file and an SNVT dictionary, never code.")

set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION "libs")
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION
"function blocks of building-automation controllers (shared library)
${zerbin_deb_about}
It creates blocks in the order a host must keep, checks the values written to
them by the rules of the tool's editors, builds their configuration images in
either byte order, and reads and writes projects atomically.

This package holds libzerbin.so.1, with a C interface any language can call
and no window system, and the shipped block library, SNVT dictionary and
owner device document.")

set(CPACK_DEBIAN_DEV_PACKAGE_SECTION "libdevel")
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "libzerbin1 (= ${zerbin_deb_version}), libpugixml-dev")
set(CPACK_COMPONENT_DEV_DESCRIPTION
"function blocks of building-automation controllers (development files)
${zerbin_deb_about}

This package holds what a host is built with: the C header zerbin/zerbin.h
and the C++ interfaces, the plug-in's header zerbin/plugin.h, the link to
libzerbin.so.1, the engine as static libraries, the CMake package
(find_package(Zerbin)) and zerbin.pc for pkg-config.")

# The command carries the engine itself; it reads the data libzerbin1 installs.
set(CPACK_DEBIAN_COMMAND_PACKAGE_SECTION "electronics")
set(CPACK_DEBIAN_COMMAND_PACKAGE_DEPENDS "libzerbin1 (= ${zerbin_deb_version})")
set(CPACK_COMPONENT_COMMAND_DESCRIPTION
"show, image, save, compare and merge controller function blocks
${zerbin_deb_about}

The zerbin command checks a block library, shows the layout of a block type,
prints the configuration image of a block with the values given, and saves
and loads projects. It also sets values in saved projects through the rules
of the editors, and compares and merges projects block by block, as a diff
and merge driver for git.")

# dpkg-shlibdeps runs in each package's staging folder and finds libzerbin.so.1, which the
# plug-in links, in libzerbin1's beside it; the dependency on it is the exact version, as its
# shlibs file says.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
    "../runtime${CPACK_PACKAGING_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}")
set(CPACK_DEBIAN_STUDIO_PACKAGE_SECTION "electronics")
set(CPACK_DEBIAN_STUDIO_PACKAGE_DEPENDS "libzerbin1 (= ${zerbin_deb_version})")
set(CPACK_COMPONENT_STUDIO_DESCRIPTION
"desktop tool to build, wire and set up controller function blocks
${zerbin_deb_about}

Zerbin Studio places blocks from the library on a canvas, wires outputs to
inputs of a fitting type, sets their parameters through the value editors and
shows the configuration bytes of each block as they change. Projects are
saved atomically, with the previous version kept beside them.

This package also holds the plug-in Zerbin.so, through which Qt hosts create
blocks and open their parameter windows.")

include(CPack)
