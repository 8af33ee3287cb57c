# The choice of sanitizers, which holds for all that is compiled. Sets CLARIVEX_LIBFUZZER where the compiler brings a
# fuzzing engine, which looks for inputs that reach new code.
set(CLARIVEX_SANITIZE "" CACHE STRING
    "address: all with the sanitizers of addresses and undefined behaviour, and the fuzzers; thread: what starts threads")

if(CLARIVEX_SANITIZE STREQUAL "address")
    set(sanitizers address,undefined)
elseif(CLARIVEX_SANITIZE STREQUAL "thread")
    set(sanitizers thread)
elseif(CLARIVEX_SANITIZE)
    message(FATAL_ERROR "CLARIVEX_SANITIZE is '${CLARIVEX_SANITIZE}'; use address, thread or nothing")
endif()

if(CLARIVEX_SANITIZE)
    # -g1 keeps function names and lines; variables would cost half of the compile time.
    add_compile_options(-O1 -g1 -fsanitize=${sanitizers} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_compile_definitions(_GLIBCXX_ASSERTIONS)
    add_link_options(-fsanitize=${sanitizers})
    if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
        set(CLARIVEX_LIBFUZZER ON)
        add_compile_options(-fsanitize=fuzzer-no-link -w)  # the product's compiler has warned of what there is
    endif()
endif()
