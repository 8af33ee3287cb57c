# The folders that `cmake --install` fills, below whatever prefix. On Debian libraries stand in that of their architecture:
# the system's loader, pkg-config and CMake look there below /usr and /usr/local alike, so packages are laid out no otherwise.
if(EXISTS /etc/debian_version AND CMAKE_LIBRARY_ARCHITECTURE AND NOT CMAKE_CROSSCOMPILING)
    set(CMAKE_INSTALL_LIBDIR lib/${CMAKE_LIBRARY_ARCHITECTURE} CACHE PATH "Libraries, below the prefix")
endif()
include(GNUInstallDirs)
