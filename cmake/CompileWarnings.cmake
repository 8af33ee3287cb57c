# The warnings that every source of the project is compiled with, and each of them is an error.
add_library(clarivex_warnings INTERFACE)
add_library(clarivex::warnings ALIAS clarivex_warnings)
target_compile_options(clarivex_warnings INTERFACE
    $<$<COMPILE_LANGUAGE:CXX>:-Wall -Wextra -Wconversion -Wshadow=local -Werror>)
