#!/usr/bin/env bash
# Installs the four packages into a root of their own as a system would, uses what is there, and removes them again:
# check_deb.sh FOLDER_OF_THE_PACKAGES. What each must hold and do stands in check_deb/. Needs dpkg, what the packages depend
# on, a C compiler, CMake, pkg-config, groff and gst-inspect-1.0; changes nothing outside a temporary folder.
set -eu
folder=$(realpath "$1")
for part in program library gstreamer; do
    . "$(dirname "$0")/check_deb/$part.sh"
done
packages=(clarivex libclarivex1 libclarivex-dev gstreamer1.0-clarivex)
libraries=usr/lib/$(dpkg-architecture --query DEB_HOST_MULTIARCH)
version=$(dpkg-deb --field "$folder"/clarivex_*.deb Version)
root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT

fail() {
    echo "check_deb.sh: $*" >&2
    exit 1
}
# A root that knows this system's packages but holds no file of them, and belongs to whoever runs this.
make_root() {
    mkdir -p "$root/var/lib/dpkg/updates" "$root/var/lib/dpkg/info"
    cp /var/lib/dpkg/arch "$root/var/lib/dpkg" 2>/dev/null || true
    awk -v RS= -v ORS='\n\n' -v ours="^Package: ($(IFS='|' && echo "${packages[*]}"))\n" '$0 !~ ours' \
        /var/lib/dpkg/status >"$root/var/lib/dpkg/status"
}
try_in_root() {
    PATH=$PATH:/usr/sbin:/sbin dpkg --root="$root" --log="$root/var/log" --force-not-root --no-triggers "$@" >"$root/var/said" 2>&1
}
in_root() { try_in_root "$@" || { cat "$root/var/said" >&2 && fail "dpkg $* does not end well"; }; }
# holds PACKAGE <LIST: its files and links are those of the list.
holds() {
    diff - <(dpkg-deb --fsys-tarfile "$folder/$1"_*.deb | tar -t | grep -v '/$' | LC_ALL=C sort) ||
        fail "$1 holds other files (>) than these (<)"
}

make_root
in_root --unpack "$folder"/libclarivex-dev_*.deb "$folder"/gstreamer1.0-clarivex_*.deb
for package in libclarivex-dev gstreamer1.0-clarivex; do
    ! try_in_root --configure $package || fail "$package is content without libclarivex1"
done
in_root --install "$folder"/libclarivex1_*.deb "$folder"/clarivex_*.deb
in_root --configure --pending
check_program
check_library
check_gstreamer
in_root --purge "${packages[@]}"
left=$(cd "$root" && find . -mindepth 1 -path ./var -prune -o -print)
[ -z "$left" ] || fail "removal leaves $left"
