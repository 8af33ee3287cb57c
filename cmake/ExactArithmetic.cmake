# What makes all builds compute the same bytes: they design the same taps only when the compiler rounds as it is written.
add_library(clarivex_exact INTERFACE)
add_library(clarivex::exact ALIAS clarivex_exact)
target_compile_options(clarivex_exact INTERFACE
    $<$<COMPILE_LANGUAGE:CXX>:-ffp-contract=off
    # This vectoriser of g++ 12 drops the rounding of two neighbouring doubles to single and back.
    -fno-tree-slp-vectorize>)
