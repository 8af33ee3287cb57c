# The processor flags of each instruction set, which stand nowhere else: a unit compiled with them holds lanes and what is
# made of them, and nothing that a plain processor could come to run.

# add_lane_unit(TARGET SOURCE [FLAG…]): compiles one source with the flags, as an object library. Its name is added to
# the global property lane_units.
function(add_lane_unit target source)
    add_library(${target} OBJECT ${source})
    set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE ON)
    # A vector type as a template argument loses its attributes, and nobody outside the unit sees that.
    target_compile_options(${target} PRIVATE ${ARGN} -Wno-ignored-attributes -Wno-psabi)
    target_link_libraries(${target} PRIVATE clarivex::warnings clarivex::exact)
    show_folder(${target} PRIVATE simd)
    set_property(GLOBAL APPEND PROPERTY lane_units ${target})
endfunction()

# add_kernels(NAME [FLAG…]): puts kernels_NAME.cpp into the floor of the kernels. NAME is added to the global property
# kernel_sets.
function(add_kernels name)
    add_lane_unit(kernels_${name} kernels_${name}.cpp ${ARGN})
    target_sources(clarivex_simd PRIVATE $<TARGET_OBJECTS:kernels_${name}>)
    set_property(GLOBAL APPEND PROPERTY kernel_sets ${name})
    set_property(GLOBAL PROPERTY kernel_flags_${name} ${ARGN})
endfunction()

# add_lane_checks(TARGET FOLDER): puts FOLDER/lanes_NAME.cpp of every set of kernels into a target, with the same flags.
function(add_lane_checks target folder)
    get_property(names GLOBAL PROPERTY kernel_sets)
    foreach(name IN LISTS names)
        get_property(flags GLOBAL PROPERTY kernel_flags_${name})
        add_lane_unit(lanes_${name} ${folder}/lanes_${name}.cpp ${flags})
        show_folder(lanes_${name} PRIVATE tests)
        target_sources(${target} PRIVATE $<TARGET_OBJECTS:lanes_${name}>)
    endforeach()
endfunction()
