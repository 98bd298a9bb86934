# Installs the shared library (component runtime) and headers, static library, CMake package, pkg-config file, licence
# and documents (component dev). The library's file name carries its version and is its SONAME too: versions live side
# by side and symbols need no versions of their own.
include(CMakePackageConfigHelpers)
set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME dev)
set(jorm_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Jorm)

set(jorm_targets jorm)
if(JORM_STATIC)
    list(APPEND jorm_targets jorm_static)
endif()
install(TARGETS ${jorm_targets} EXPORT JormTargets LIBRARY COMPONENT runtime ARCHIVE COMPONENT dev)
install(FILES ${PROJECT_SOURCE_DIR}/include/jorm.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/jorm DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
    FILES_MATCHING PATTERN *.h PATTERN *.hpp)

# The documents lie beside each other as in the sources, so that their links hold.
foreach(document LICENSE README.md CHANGELOG.md CONTRIBUTING.md)
    install(FILES ${PROJECT_SOURCE_DIR}/${document} DESTINATION ${CMAKE_INSTALL_DOCDIR})
endforeach()
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs ${PROJECT_SOURCE_DIR}/examples DESTINATION ${CMAKE_INSTALL_DOCDIR}
    FILES_MATCHING PATTERN *.md PATTERN *.png PATTERN *.c PATTERN *.cpp)

install(EXPORT JormTargets FILE JormConfig.cmake NAMESPACE Jorm:: DESTINATION ${jorm_package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/JormConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/JormConfigVersion.cmake DESTINATION ${jorm_package_dir})

# The prefix is found from where the file lies, so that an installed tree can be moved.
file(RELATIVE_PATH jorm_prefix_from_pc /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" jorm_prefix_from_pc ${jorm_prefix_from_pc})
function(jorm_pkg_config name libs)
    configure_file(${PROJECT_SOURCE_DIR}/cmake/jorm.pc.in ${PROJECT_BINARY_DIR}/${name}.pc @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/${name}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endfunction()
get_target_property(file jorm OUTPUT_NAME)
jorm_pkg_config(jorm "-L\${libdir} -l${file}")
if(JORM_STATIC)
    get_target_property(options jorm_static INTERFACE_LINK_OPTIONS)
    get_target_property(libraries jorm_static INTERFACE_LINK_LIBRARIES)
    list(JOIN options " " options)
    list(JOIN libraries " " libraries)
    jorm_pkg_config(jorm-static "\${libdir}/lib${file}.a ${options} ${libraries}")
endif()
