# The program that docs/library.md shows, as a C compiler takes it with every complaint, and what it gives.
enable_language(C)
set(page ${PROJECT_SOURCE_DIR}/docs/library.md)
set(example ${PROJECT_BINARY_DIR}/enhance_raw.c)
add_custom_command(OUTPUT ${example} DEPENDS ${page} VERBATIM
    COMMAND sed -n [[/^```c$/,/^```$/{//!p}]] ${page} > ${example})
add_executable(enhance_raw ${example})
set_target_properties(enhance_raw PROPERTIES C_STANDARD 11 C_STANDARD_REQUIRED ON C_EXTENSIONS OFF)
target_compile_options(enhance_raw PRIVATE -Wall -Wextra -pedantic -Werror)
target_link_libraries(enhance_raw PRIVATE clarivex_shared)
add_test(NAME library_example
    COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/library/example_test.sh $<TARGET_FILE:clarivex> $<TARGET_FILE:enhance_raw>)
if(NOT CLARIVEX_SANITIZE)  # the sanitizers add symbols of their own
    add_test(NAME library_shows_its_functions_only
        COMMAND ${scripts}/check_exports.sh ${CMAKE_NM} $<TARGET_FILE:clarivex_shared>
            ${PROJECT_SOURCE_DIR}/library/exports.map)
endif()
