# CPack runs this when the files of all components stand in their folders: dpkg-shlibdeps tells what packages their
# libraries come from. CPack's own call of it does not know a library that another component brings, and would have
# the library's package call ldconfig by itself, for which Debian has a trigger.
set(stage ${CPACK_TEMPORARY_DIRECTORY})
file(WRITE ${stage}/debian/control "")  # dpkg-shlibdeps does not start without

foreach(component program library gstreamer)
    set(folder ${stage}/${component}/usr)
    file(GLOB_RECURSE files ${folder}/bin/* ${folder}/libexec/* ${folder}/lib/*.so ${folder}/lib/*.so.*)
    execute_process(COMMAND_ERROR_IS_FATAL ANY WORKING_DIRECTORY ${stage} OUTPUT_VARIABLE found
        COMMAND dpkg-shlibdeps -O -L${CPACK_LIBRARY_SHLIBS} -l${stage}/library/${CPACK_LIBRARY_FOLDER} ${files})
    string(REGEX REPLACE "^shlibs:Depends=|\n" "" found ${found})
    string(TOUPPER CPACK_DEBIAN_${component}_PACKAGE_DEPENDS depends)
    list(APPEND ${depends} ${found})
    list(JOIN ${depends} ", " ${depends})
endforeach()
