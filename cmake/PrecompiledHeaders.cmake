# Headers that most sources read, compiled once for all. A compiler cache does not keep what they are in, so with one
# they are left out.
if(NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(precompile ON)
endif()

# g++ 12 forgets that precompiled headers are the system's and warns of bounds inside them.
set(precompiled_warnings -Wno-array-bounds -Wno-restrict -Wno-stringop-overflow)

# precompile_headers(TARGET [HEADER…]): the library's own headers and those given.
function(precompile_headers target)
    if(precompile)
        target_precompile_headers(${target} PRIVATE
            <algorithm> <array> <cmath> <functional> <memory> <span> <string> <vector> ${ARGN})
        target_compile_options(${target} PRIVATE ${precompiled_warnings})
    endif()
endfunction()

# precompile_floor(TARGET): the lowest floor compiles them for all others. The plain native build goes without, and so
# shows that each source includes what it needs.
function(precompile_floor target)
    if(NOT WIN32 AND NOT CLARIVEX_SANITIZE)
        return()
    elseif(target STREQUAL "clarivex_platform")
        precompile_headers(${target} ${PROJECT_BINARY_DIR}/views/platform/platform/win32.h)
    elseif(precompile)
        target_precompile_headers(${target} REUSE_FROM clarivex_platform)
        target_compile_options(${target} PRIVATE ${precompiled_warnings})
    endif()
endfunction()
