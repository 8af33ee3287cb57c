# What `cmake --install` puts where of the C library: the components `library`, for programs that run with it, and
# `development`, for those that are built with it. Included by Packaging.
include(CMakePackageConfigHelpers)

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/clarivex)
set(pkgconfig_folder ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH prefix_from_pkgconfig /${pkgconfig_folder} /)  # the files may be installed anywhere
string(REGEX REPLACE "/$" "" prefix_from_pkgconfig ${prefix_from_pkgconfig})
configure_file(library/clarivex.pc.in ${PROJECT_BINARY_DIR}/clarivex.pc @ONLY)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/clarivex-config-version.cmake
    VERSION ${CPACK_PACKAGE_VERSION} COMPATIBILITY SameMajorVersion)

install(TARGETS clarivex_shared EXPORT clarivex
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library NAMELINK_COMPONENT development)
install(DIRECTORY include/clarivex DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)
install(EXPORT clarivex FILE clarivex-config.cmake NAMESPACE clarivex:: DESTINATION ${package_folder}
    COMPONENT development)
install(FILES ${PROJECT_BINARY_DIR}/clarivex-config-version.cmake DESTINATION ${package_folder} COMPONENT development)
install(FILES ${PROJECT_BINARY_DIR}/clarivex.pc DESTINATION ${pkgconfig_folder} COMPONENT development)
