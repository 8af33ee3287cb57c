# Programs and libraries resolve what they call at their start, so that the tables of it can be made read-only. Debian asks
# for that; Windows has no such tables.
if(NOT WIN32)
    add_link_options(-Wl,-z,relro,-z,now)
endif()
