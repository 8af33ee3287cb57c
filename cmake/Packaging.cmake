# What `cmake --install` puts where on a Linux system, and the Debian package that CPack makes of it.
include(GNUInstallDirs)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME clarivex)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}.${PROJECT_VERSION_PATCH})
set(CPACK_PACKAGE_CONTACT "Clarivex developers <clarivex@example.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "video enhancement on the processor alone")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"Sharpens video, corrects its lighting and enlarges it by exactly three
halves, with the same bytes on every machine.

The command clarivex enhances films and Y4M pipes, shows what it does to a
frame, and tells what the processor can do.")
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION video)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS fonts-dejavu-core)  # the caption's letters
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

# gzip_at_build(SOURCE NAME): the file, compressed as Debian wants it, as NAME in the build folder, with the target `packed`.
add_custom_target(packed ALL)
function(gzip_at_build source name)
    set(packed_file ${PROJECT_BINARY_DIR}/${name})
    add_custom_command(OUTPUT ${packed_file} DEPENDS ${source} VERBATIM
        COMMAND sh -c "gzip -9nc \"$1\" >\"$2\"" gzip ${source} ${packed_file})
    add_custom_target(packed_${name} DEPENDS ${packed_file})
    add_dependencies(packed packed_${name})
endfunction()

string(TIMESTAMP changelog_date "%a, %d %b %Y %H:%M:%S +0000" UTC)
configure_file(${PROJECT_SOURCE_DIR}/scripts/package/changelog.in ${PROJECT_BINARY_DIR}/changelog @ONLY)
gzip_at_build(${PROJECT_BINARY_DIR}/changelog changelog.gz)
gzip_at_build(${PROJECT_BINARY_DIR}/clarivex.1 clarivex.1.gz)
add_dependencies(packed_clarivex.1.gz manual)

# The program's package holds no library until there are packages for it.
set(CPACK_INSTALL_CMAKE_PROJECTS "${PROJECT_BINARY_DIR};${PROJECT_NAME};Unspecified;/")
include(InstallLibrary)
install(TARGETS clarivex RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES ${PROJECT_BINARY_DIR}/clarivex.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES ${PROJECT_BINARY_DIR}/clarivex.bash RENAME clarivex
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
install(FILES README.md CHANGELOG.md scripts/package/copyright ${PROJECT_BINARY_DIR}/changelog.gz
    DESTINATION ${CMAKE_INSTALL_DOCDIR})

include(CPack)
