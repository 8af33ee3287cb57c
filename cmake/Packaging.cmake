# What `cmake --install` puts where on a Linux system: the component `program` here, those of the library in InstallLibrary,
# `gstreamer` in its own folder. Then the Debian packages that CPack makes, one of each component.

# gzip_at_build(SOURCE NAME): the file, compressed as Debian wants it, as NAME in the build folder, with the target `packed`.
add_custom_target(packed ALL)
function(gzip_at_build source name)
    set(packed_file ${PROJECT_BINARY_DIR}/${name})
    add_custom_command(OUTPUT ${packed_file} DEPENDS ${source} VERBATIM
        COMMAND sh -c "gzip -9nc \"$1\" >\"$2\"" gzip ${source} ${packed_file})
    add_custom_target(packed_${name} DEPENDS ${packed_file})
    add_dependencies(packed packed_${name})
endfunction()

gzip_at_build(${PROJECT_BINARY_DIR}/clarivex.1 clarivex.1.gz)
add_dependencies(packed_clarivex.1.gz manual)

install(TARGETS clarivex RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT program)
install(FILES ${PROJECT_BINARY_DIR}/clarivex.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT program)
install(FILES ${PROJECT_BINARY_DIR}/clarivex.bash RENAME clarivex
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT program)
install(FILES README.md CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT program)

set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}.${PROJECT_VERSION_PATCH})
include(InstallLibrary)
include(DebianPackages)
