# Stands in for the updater; apart from the plug-in, so that only tests that copy it there start it.
add_executable(stand_in_updater shell/windows/programs/stand_in_updater.cpp)
set_target_properties(stand_in_updater PROPERTIES
    OUTPUT_NAME twupdate RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/stand_in)
target_link_libraries(stand_in_updater PRIVATE clarivex::platform)
add_dependencies(clarivex_tests stand_in_updater)

# All in one process: starting Wine takes longer than most tests.
add_test(NAME clarivex_tests COMMAND clarivex_tests WORKING_DIRECTORY ${PROJECT_BINARY_DIR})
add_test(NAME only_system_dlls_are_imported
    COMMAND ${scripts}/check_imports.sh ${CMAKE_OBJDUMP} $<TARGET_FILE:clarivex> $<TARGET_FILE:WMP_CVX>)
if(CMAKE_SIZEOF_VOID_P EQUAL 8)
    add_test(NAME wide_kernels_need_no_aligned_stack COMMAND_EXPAND_LISTS
        COMMAND ${scripts}/check_wide_moves.sh ${CMAKE_OBJDUMP}
            $<TARGET_OBJECTS:kernels_avx2> $<TARGET_OBJECTS:kernels_avx512>
            $<TARGET_OBJECTS:lanes_avx2> $<TARGET_OBJECTS:lanes_avx512>)
endif()
