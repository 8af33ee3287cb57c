# A floor of the house: one folder, and the static library clarivex::FOLDER made of it.
include(PrecompiledHeaders)

# show_folder(TARGET SCOPE FOLDER): lets the target, and with SCOPE PUBLIC all that link it, include "FOLDER/…".
# A view is a directory that holds nothing but a link to one folder, so a source that looks up finds no such file.
function(show_folder target scope folder)
    set(view ${PROJECT_BINARY_DIR}/views/${folder})
    file(MAKE_DIRECTORY ${view})
    file(CREATE_LINK ${PROJECT_SOURCE_DIR}/${folder} ${view}/${folder} SYMBOLIC)
    target_include_directories(${target} ${scope} ${view})
endfunction()

# add_floor(FOLDER LINKS TARGET… SOURCES FILE…): LINKS are the floors below that this one, and so whoever uses it, sees.
function(add_floor folder)
    cmake_parse_arguments(PARSE_ARGV 1 floor "" "" "LINKS;SOURCES")
    if(floor_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR "add_floor(${folder}): '${floor_UNPARSED_ARGUMENTS}' stands behind neither LINKS nor SOURCES")
    endif()
    add_library(clarivex_${folder} STATIC ${floor_SOURCES})
    add_library(clarivex::${folder} ALIAS clarivex_${folder})
    set_target_properties(clarivex_${folder} PROPERTIES POSITION_INDEPENDENT_CODE ON)  # shared libraries can hold it
    show_folder(clarivex_${folder} PUBLIC ${folder})
    target_link_libraries(clarivex_${folder} PUBLIC clarivex::warnings clarivex::exact ${floor_LINKS})
    precompile_floor(clarivex_${folder})
endfunction()
