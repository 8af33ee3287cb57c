# add_kernels(NAME [FLAG…]): compiles kernels_NAME.cpp, and nothing else, with the processor flags given, as the object
# library kernels_NAME, and puts it into the floor of the kernels. Its name is added to the global property kernel_sets.
# `-m` flags of instruction sets stand nowhere else.
function(add_kernels name)
    add_library(kernels_${name} OBJECT kernels_${name}.cpp)
    set_target_properties(kernels_${name} PROPERTIES POSITION_INDEPENDENT_CODE ON)
    # A vector type as a template argument loses its attributes, and nobody outside the unit sees that.
    target_compile_options(kernels_${name} PRIVATE ${ARGN} -Wno-ignored-attributes -Wno-psabi)
    target_link_libraries(kernels_${name} PRIVATE clarivex::warnings clarivex::exact)
    show_folder(kernels_${name} PRIVATE simd)
    target_sources(clarivex_simd PRIVATE $<TARGET_OBJECTS:kernels_${name}>)
    set_property(GLOBAL APPEND PROPERTY kernel_sets kernels_${name})
endfunction()
