# The Debian packages that CPack makes, one of each component: their control fields, and the texts that only packages hold.
# Included by Packaging.
set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL program library development gstreamer)
set(CPACK_PACKAGE_NAME clarivex)
set(CPACK_PACKAGE_CONTACT "Clarivex developers <clarivex@example.org>")
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/PackageDependencies.cmake)

string(TIMESTAMP changelog_date "%a, %d %b %Y %H:%M:%S +0000" UTC)
configure_file(scripts/package/changelog.in ${PROJECT_BINARY_DIR}/changelog @ONLY)
gzip_at_build(${PROJECT_BINARY_DIR}/changelog changelog.gz)

# debian_package(COMPONENT NAME SECTION DESCRIPTION [DEPENDS …] [RECOMMENDS …] [CONTROL_EXTRA FILE…]): the first line of
# the description is the summary. Packages of other libraries need not be named: PackageDependencies finds them.
macro(debian_package component name section description)
    string(TOUPPER CPACK_DEBIAN_${component} prefix)
    cmake_parse_arguments(${prefix}_PACKAGE "" "DEPENDS;RECOMMENDS" "CONTROL_EXTRA" ${ARGN})
    set(${prefix}_PACKAGE_NAME ${name})
    set(${prefix}_PACKAGE_SECTION ${section})
    set(${prefix}_DESCRIPTION ${description})
    if(NOT ${name} STREQUAL ${CPACK_PACKAGE_NAME})
        set(${prefix}_PACKAGE_SOURCE ${CPACK_PACKAGE_NAME})
    endif()
    install(FILES scripts/package/copyright ${PROJECT_BINARY_DIR}/changelog.gz
        DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/${name} COMPONENT ${component} EXCLUDE_FROM_ALL)
endmacro()

set(what_it_does
"Clarivex sharpens video, corrects its lighting and enlarges it by exactly
three halves, with the same bytes on every machine.")
set(caption_font fonts-dejavu-core)

debian_package(program clarivex video
"video enhancement on the processor alone
${what_it_does}

The command clarivex enhances films and Y4M pipes, shows what it does to a
frame, and tells what the processor can do."
    RECOMMENDS "gstreamer1.0-clarivex, ${caption_font}")

# What packages of programs depend on that use the library, and that the loader's list of libraries changes.
set(library_control ${PROJECT_BINARY_DIR}/libclarivex1)
file(CONFIGURE OUTPUT ${library_control}/shlibs CONTENT
    "libclarivex ${PROJECT_VERSION_MAJOR} libclarivex1 (>= ${CPACK_PACKAGE_VERSION})\n")
file(CONFIGURE OUTPUT ${library_control}/triggers CONTENT "activate-noawait ldconfig\n")
debian_package(library libclarivex1 libs
"video enhancement on the processor alone - library
${what_it_does}

This package holds the library for programs written in C and what can call
it."
    RECOMMENDS ${caption_font}
    CONTROL_EXTRA ${library_control}/shlibs ${library_control}/triggers)
set(CPACK_LIBRARY_SHLIBS ${library_control}/shlibs)  # these two for PackageDependencies
set(CPACK_LIBRARY_FOLDER usr/${CMAKE_INSTALL_LIBDIR})

debian_package(development libclarivex-dev libdevel
"video enhancement on the processor alone - development files
${what_it_does}

This package holds the header, what pkg-config and CMake need to find the
library, and a page that tells how to use it."
    DEPENDS "libclarivex1 (= ${CPACK_PACKAGE_VERSION})")
install(FILES docs/library.md
    DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/libclarivex-dev COMPONENT development)

debian_package(gstreamer gstreamer1.0-clarivex video
"video enhancement on the processor alone - GStreamer element
${what_it_does}

This package holds the element clarivex for GStreamer's players and
pipelines, and the player that the command clarivex play starts."
    DEPENDS gstreamer1.0-plugins-base
    RECOMMENDS "gstreamer1.0-x, gstreamer1.0-plugins-good, gstreamer1.0-libav")

include(CPack)
