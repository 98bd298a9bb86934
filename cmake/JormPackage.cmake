# Debian packages of the installed components, made by cpack from the preset `package`; see scripts/package.
# The library package is named after the SONAME, so that versions can be installed side by side.
set(packaging ${PROJECT_SOURCE_DIR}/packaging)
set(release 1)
set(full_version ${PROJECT_VERSION}-${release})
set(package_of_runtime libjorm-1-0-0)
set(package_of_dev libjorm-dev)
set(package_of_tools jorm-tool)
set(package_of_python python3-jorm)
set(CPACK_COMPONENTS_ALL runtime dev)
if(JORM_TOOLS)
    list(APPEND CPACK_COMPONENTS_ALL tools)
endif()
if(TARGET jorm_python)
    list(APPEND CPACK_COMPONENTS_ALL python)
endif()

execute_process(COMMAND gzip -9nc ${packaging}/changelog OUTPUT_FILE ${PROJECT_BINARY_DIR}/changelog.Debian.gz
    COMMAND_ERROR_IS_FATAL ANY)
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    string(TOUPPER ${component} upper)
    set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${package_of_${component}})
    install(FILES ${packaging}/copyright ${PROJECT_BINARY_DIR}/changelog.Debian.gz COMPONENT ${component}
        DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/${package_of_${component}})
endforeach()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME libjorm)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "The libJorm authors <maintainers@jorm.invalid>")
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_STRIP_FILES ON)
set(CPACK_PRE_BUILD_SCRIPTS ${packaging}/finish_trees.cmake)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE ${release})
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR})

set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA "${packaging}/shlibs;${packaging}/triggers")
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "${package_of_runtime} (= ${full_version})")
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "${package_of_runtime} (>= ${PROJECT_VERSION})")
# The extension is for one version of Python 3.
math(EXPR next_minor "${Python3_VERSION_MINOR} + 1")
set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SUGGESTS "python3-dask, python3-distributed")
set(CPACK_DEBIAN_PYTHON_PACKAGE_SHLIBDEPS ON)
set(python_versions "python3 (>= 3.${Python3_VERSION_MINOR}), python3 (<< 3.${next_minor})")
set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS
    "${package_of_runtime} (>= ${PROJECT_VERSION}), ${python_versions}, python3-numpy")
set(about "Arithmetic, statistics, filters and geometry on arrays with 1 to 4 channels\nand any byte strides, exact, on one thread.")
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "image processing on the caller's memory\n${about}")
set(CPACK_DEBIAN_DEV_DESCRIPTION "image processing on the caller's memory (development)\n${about}
\nThis package holds headers, the static library, the CMake package and documents.")
set(CPACK_DEBIAN_TOOLS_DESCRIPTION "image processing on picture files\n${about}
\nThis package holds the command-line tool.")
set(CPACK_DEBIAN_PYTHON_DESCRIPTION "image processing on numpy arrays\n${about}
\nThis package holds the Python 3 module.")
include(CPack)
