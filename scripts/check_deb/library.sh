# The library and what is needed to build with it: what its page shows is built, in both ways that it tells, and run.
check_library() (
    holds libclarivex1 <<END
./$libraries/libclarivex.so.1
./$libraries/libclarivex.so.$version
./usr/share/doc/libclarivex1/changelog.gz
./usr/share/doc/libclarivex1/copyright
END
    holds libclarivex-dev <<END
./usr/include/clarivex/clarivex.h
./$libraries/cmake/clarivex/clarivex-config-relwithdebinfo.cmake
./$libraries/cmake/clarivex/clarivex-config-version.cmake
./$libraries/cmake/clarivex/clarivex-config.cmake
./$libraries/libclarivex.so
./$libraries/pkgconfig/clarivex.pc
./usr/share/doc/libclarivex-dev/changelog.gz
./usr/share/doc/libclarivex-dev/copyright
./usr/share/doc/libclarivex-dev/library.md
END
    page=$root/usr/share/doc/libclarivex-dev/library.md
    mkdir "$root/var/program"
    cd "$root/var/program"
    sed -n '/^```c$/,/^```$/{//!p}' "$page" >enhance_raw.c

    export PKG_CONFIG_SYSROOT_DIR=$root PKG_CONFIG_LIBDIR=$root/$libraries/pkgconfig
    [ "$(pkg-config --modversion clarivex)" = "$version" ] || fail 'pkg-config knows another version'
    grep '^cc ' "$page" | sh -e || fail 'nothing is built with pkg-config'

    {
        printf 'cmake_minimum_required(VERSION 3.25)\nproject(user LANGUAGES C)\nadd_executable(program enhance_raw.c)\n'
        sed -n '/^```cmake$/,/^```$/{//!p}' "$page"
    } >CMakeLists.txt
    { cmake -D CMAKE_PREFIX_PATH="$root/usr" -B build && cmake --build build; } >said 2>&1 ||
        { cat said >&2 && fail 'nothing is built with CMake'; }

    for program in ./a.out build/program; do  # two pictures of 96x64 become two of 144x96
        head -c $((2 * 96 * 64 * 3 / 2)) /dev/zero | LD_LIBRARY_PATH=$root/$libraries $program 96 64 >out
        [ "$(stat -c %s out)" = $((2 * 144 * 96 * 3 / 2)) ] || fail "$program does not enhance"
    done
)
