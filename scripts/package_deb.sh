#!/usr/bin/env bash
# Packs what Debian users need into build/, one package of each kind: clarivex_VERSION_amd64.deb, or of what architecture this
# machine is, libclarivex1_…, libclarivex-dev_… and gstreamer1.0-clarivex_…; and checks them. Needs of the preset native
# `clarivex`, `clarivex_shared`, `gstclarivex`, `clarivex_player` and `packed`. Another build folder than build/: package_deb.sh FOLDER
set -eu
folder=$(realpath "${1:-$(dirname "$0")/../build}")
cd "$(dirname "$0")"

libraries=lib/$(dpkg-architecture --query DEB_HOST_MULTIARCH)
grep -q "^CMAKE_INSTALL_LIBDIR:PATH=$libraries\$" "$folder/native/CMakeCache.txt" || {
    echo "package_deb.sh: $folder/native is configured for another folder of libraries than $libraries;" \
        "run cmake --preset native -U CMAKE_INSTALL_LIBDIR" >&2
    exit 1
}
stage=$(mktemp -d)
trap 'rm -rf "$stage"' EXIT
umask 022
cpack --config "$folder/native/CPackConfig.cmake" -B "$stage" >"$stage/log" 2>&1 || { cat "$stage/log" >&2 && exit 1; }

as_user=()
[ "$(id -u)" != 0 ] || as_user=(--allow-root)
lintian "${as_user[@]}" --fail-on error,warning "$stage"/*.deb
./check_deb.sh "$stage"
for package in "$stage"/*.deb; do
    mv "$package" "$folder"
    echo "$folder/${package##*/}"
done
