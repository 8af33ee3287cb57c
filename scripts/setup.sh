#!/usr/bin/env bash
# Installs the Debian packages that are missing, and does nothing when none is:
# setup.sh [native | all | package | fuzz | lint | format]
#   native  builds, tests, benches and the demo on Linux
#   all     native, and both Windows builds and their tests under Wine, and emulated older processors
#   package native, and what packs the Windows installer and packs and checks the Debian packages
#   fuzz    native, and clang with its fuzzing engine
#   lint    native, and the formatter and the linter
#   format  the formatter alone
set -eu
cd "$(dirname "$0")/.."

packages=(cmake ninja-build g++ googletest libbenchmark-dev libfreetype-dev libfontconfig-dev fonts-dejavu-core ffmpeg)
packages+=(pkg-config libavformat-dev libavcodec-dev libavfilter-dev libswscale-dev libavutil-dev)
packages+=(libgstreamer1.0-dev libgstreamer-plugins-base1.0-dev gstreamer1.0-tools gstreamer1.0-plugins-base)
packages+=(gstreamer1.0-plugins-good gstreamer1.0-libav gstreamer1.0-x libx11-dev xvfb xauth xdotool)
case ${1:-all} in
native) ;;
all)
    packages+=(g++-mingw-w64-i686-posix binutils-mingw-w64-i686 g++-mingw-w64-x86-64-posix binutils-mingw-w64-x86-64)
    packages+=(wine wine64 wine32:i386 qemu-user)
    ;;
package) packages+=(dpkg-dev lintian groff-base nsis) ;;
fuzz) packages+=(clang libclang-rt-dev) ;;
lint) packages+=(clang-format clang-tidy) ;;
format) packages=(clang-format) ;;
*)
    echo "setup.sh: unknown argument '$1'; use native, all, package, fuzz, lint or format" >&2
    exit 2
    ;;
esac

if ! command -v apt-get >/dev/null; then
    echo "setup.sh: there is no apt-get here; install what these Debian packages hold by hand: ${packages[*]}" >&2
    exit 1
fi

missing=()
for package in "${packages[@]}"; do
    status=$(dpkg-query --show --showformat='${db:Status-Status}' "$package" 2>/dev/null || true)
    [ "$status" = installed ] || missing+=("$package")
done
[ ${#missing[@]} -gt 0 ] || exit 0

as_root() {
    if [ "$(id -u)" = 0 ]; then "$@"; else sudo "$@"; fi
}
install() {
    as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends "$@" "${missing[@]}"
}

echo "setup.sh: installing ${missing[*]}"
if [[ ${missing[*]} == *:i386* ]]; then
    as_root dpkg --add-architecture i386
fi
as_root apt-get update || echo "setup.sh: not every package list could be fetched; going on with those at hand"
# With i386 packages there, a newer package of GStreamer would take its development files away: nothing may be removed.
install --no-remove ||
    install -o Dir::Etc::Preferences="$PWD/scripts/apt-main-only.pref" --allow-downgrades ||
    install --fix-missing
