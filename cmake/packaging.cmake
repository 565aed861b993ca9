# Debian packages, built by `cpack` in the build tree (`make package`):
#   libcorvekit1     the shared library and the utility library it loads (component runtime)
#   libcorvekit-dev  headers, CMake package, pkg-config file and link names (component dev)
#   corvekit-tools   the corvekit command-line tool (component tools)
# Dependencies on other packages come from dpkg-shlibdeps; those between the three are fixed to
# the exact version, as the tool and the headers belong to one build of the library.

set(CORVEKIT_DEB_RELEASE 1)
set(CORVEKIT_DEB_VERSION ${PROJECT_VERSION}-${CORVEKIT_DEB_RELEASE})
set(CORVEKIT_DEB_RUNTIME libcorvekit${PROJECT_VERSION_MAJOR})
set(CORVEKIT_DEB_DIR ${CMAKE_CURRENT_BINARY_DIR}/debian)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME corvekit)
set(CPACK_PACKAGE_VENDOR "corvekit maintainers")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
# Each package's description starts with its own synopsis, not the project's.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_PACKAGE_CONTACT
    "corvekit maintainers <maintainers@users.noreply.c-seed-e38addf9.example>")
set(CPACK_DEBIAN_PACKAGE_MAINTAINER ${CPACK_PACKAGE_CONTACT})
set(CPACK_DEBIAN_PACKAGE_RELEASE ${CORVEKIT_DEB_RELEASE})
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# dpkg-shlibdeps finds the library of this build here when it looks at the tool.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
    ${PROJECT_BINARY_DIR}/corvekit ${PROJECT_BINARY_DIR}/hulmar)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL runtime dev tools)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${CORVEKIT_DEB_RUNTIME})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "base utility library of the FPGA design suite
corvekit answers the questions that every tool of the suite has in common:
where the installation lies and how the process environment is set up,
what a setting's value is through the project, user and system levels,
where companion tools are installed, how names and pins sort, what the help
index says, and how long a GUI task took.
.
This package holds the shared library and the utility library it loads.")
# The ldconfig trigger and the shlibs file that a shared library package carries. (CPack adds
# maintainer scripts that call ldconfig as well, which lintian warns about.)
file(WRITE ${CORVEKIT_DEB_DIR}/runtime/triggers "activate-noawait ldconfig\n")
file(WRITE ${CORVEKIT_DEB_DIR}/runtime/shlibs
    "libcorvekit ${PROJECT_VERSION_MAJOR} ${CORVEKIT_DEB_RUNTIME} (>= ${PROJECT_VERSION})\n"
    "libhulmar ${PROJECT_VERSION_MAJOR} ${CORVEKIT_DEB_RUNTIME} (>= ${PROJECT_VERSION})\n")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA
    ${CORVEKIT_DEB_DIR}/runtime/triggers ${CORVEKIT_DEB_DIR}/runtime/shlibs)

set(CPACK_DEBIAN_DEV_PACKAGE_NAME libcorvekit-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS
    "${CORVEKIT_DEB_RUNTIME} (= ${CORVEKIT_DEB_VERSION}), qt6-base-dev")
set(CPACK_DEBIAN_DEV_DESCRIPTION "base utility library of the FPGA design suite - development files
corvekit is the base utility library that every tool of the FPGA design suite
loads: installation environment, layered settings, name and pin ordering,
tool names and labels, help index queries and the GUI task profiler.
.
This package holds the headers, the CMake package (find_package(corvekit))
and the pkg-config file (pkg-config corvekit).")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME corvekit-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "${CORVEKIT_DEB_RUNTIME} (= ${CORVEKIT_DEB_VERSION})")
set(CPACK_DEBIAN_TOOLS_DESCRIPTION "command-line view of how an FPGA suite installation resolves
The corvekit tool shows a CAD administrator what the suite's base library
answers: the install root and environment, the level that holds a setting,
product versions, companion tools, file type filters, label texts, help index
queries, and name, pin and wildcard ordering.")

# Every package carries the copyright file and a Debian changelog in its documentation folder.
configure_file(${PROJECT_SOURCE_DIR}/cmake/debian/changelog.in ${CORVEKIT_DEB_DIR}/changelog @ONLY)
execute_process(COMMAND gzip -9nf ${CORVEKIT_DEB_DIR}/changelog
    COMMAND_ERROR_IS_FATAL ANY)
file(RENAME ${CORVEKIT_DEB_DIR}/changelog.gz ${CORVEKIT_DEB_DIR}/changelog.Debian.gz)
foreach(component runtime dev tools)
    string(TOUPPER ${component} upper)
    install(FILES ${PROJECT_SOURCE_DIR}/cmake/debian/copyright
            ${CORVEKIT_DEB_DIR}/changelog.Debian.gz
        DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/${CPACK_DEBIAN_${upper}_PACKAGE_NAME}
        COMPONENT ${component}
        EXCLUDE_FROM_ALL)
endforeach()

include(CPack)
