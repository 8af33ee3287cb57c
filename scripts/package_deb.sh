#!/usr/bin/env bash
# Packs what a Debian user needs into build/clarivex_VERSION_amd64.deb, or of what architecture this machine is, and checks
# it. Needs the preset native built. Another build folder than build/: package_deb.sh FOLDER
set -eu
folder=$(realpath "${1:-$(dirname "$0")/../build}")
cd "$(dirname "$0")"

stage=$(mktemp -d)
trap 'rm -rf "$stage"' EXIT
umask 022
cpack --config "$folder/native/CPackConfig.cmake" -B "$stage" >"$stage/log" 2>&1 || { cat "$stage/log" >&2 && exit 1; }
package=$(echo "$stage"/*.deb)

as_user=()
[ "$(id -u)" != 0 ] || as_user=(--allow-root)
lintian "${as_user[@]}" --fail-on error "$package"
./check_deb.sh "$package"
mv "$package" "$folder"
echo "$folder/${package##*/}"
