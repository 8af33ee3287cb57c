# All in one process: starting Wine takes longer than most tests.
add_test(NAME clarivex_tests COMMAND clarivex_tests WORKING_DIRECTORY ${PROJECT_BINARY_DIR})
add_test(NAME only_system_dlls_are_imported
    COMMAND ${scripts}/check_imports.sh ${CMAKE_OBJDUMP} $<TARGET_FILE:clarivex> $<TARGET_FILE:WMP_CVX>
        $<TARGET_FILE:clarivex_video>)
if(CMAKE_SIZEOF_VOID_P EQUAL 8)
    add_test(NAME wide_kernels_need_no_aligned_stack COMMAND_EXPAND_LISTS
        COMMAND ${scripts}/check_wide_moves.sh ${CMAKE_OBJDUMP}
            $<TARGET_OBJECTS:kernels_avx2> $<TARGET_OBJECTS:kernels_avx512>
            $<TARGET_OBJECTS:kernels_avx512vbmi>
            $<TARGET_OBJECTS:lanes_avx2> $<TARGET_OBJECTS:lanes_avx512>)
endif()

# An ffmpeg.exe that hands on to the system's own, in a folder where nothing but the test finds it.
add_executable(ffmpeg_bridge host/windows/ffmpeg_bridge.cpp)
target_link_libraries(ffmpeg_bridge PRIVATE clarivex::platform)
set_target_properties(ffmpeg_bridge PROPERTIES
    OUTPUT_NAME ffmpeg RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/ffmpeg_bridge)
add_dependencies(programs ffmpeg_bridge)
add_test(NAME clarivex_films
    COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/host/windows/film_test.sh
        ${CMAKE_CROSSCOMPILING_EMULATOR} $<TARGET_FILE:clarivex> $<TARGET_FILE:ffmpeg_bridge>)

# For the check of the installer: Wine has no player, and everybody there is an administrator.
add_library(fake_registrar MODULE EXCLUDE_FROM_ALL setup/fake_registrar.cpp)
set_target_properties(fake_registrar PROPERTIES PREFIX "")
target_link_options(fake_registrar PRIVATE -Wl,--kill-at)  # exported by its plain name
add_executable(without_rights EXCLUDE_FROM_ALL setup/without_rights.cpp)
foreach(helper fake_registrar without_rights)
    show_folder(${helper} PRIVATE tests)
    target_link_libraries(${helper} PRIVATE clarivex::platform)
endforeach()
