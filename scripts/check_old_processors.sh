#!/usr/bin/env bash
# Runs the command line and the tests of all kernels on emulated processors: check_old_processors.sh TESTS CLARIVEX
# Each has to take the instruction set that it and its operating system have, and to give this machine's bytes.
# Exit code 77, a skipped test, where there is no emulator.
set -eu -o pipefail
tests=$1
clarivex=$2
command -v qemu-x86_64 >/dev/null || exit 77

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
{
    printf 'YUV4MPEG2 W160 H120 F25:1 Ip C420jpeg\n'
    for frame in 1 2 3; do
        printf 'FRAME\n'
        { yes "0 quick~brown fox $frame {jumps} over" || true; } | head -c $((160 * 120 * 3 / 2))
    done
} >"$folder/clip.y4m"

# enhance PROGRAM…: what becomes of the clip, in both modes
enhance() { for mode in always never; do "$@" enhance --quiet --mode "$mode" "$folder/clip.y4m" -; done | cksum; }
expected=$(enhance "$clarivex")

# check CPU SET: what `info` says is in use, and the clip
check() {
    emulated=(qemu-x86_64 -cpu "$1")
    "${emulated[@]}" "$clarivex" info 2>"$folder/notes" | grep -q "^in use: *$2\$" ||
        { echo "$1 does not take $2:" && "${emulated[@]}" "$clarivex" info && exit 1; }
    [ "$(enhance "${emulated[@]}" "$clarivex" 2>"$folder/notes")" = "$expected" ] ||
        { echo "$1 gives other bytes" && cat "$folder/notes" && exit 1; }
    echo "$1: $2, same bytes"
}
check Conroe sse2
check Haswell avx2
check Haswell,-xsave sse2  # an operating system that does not save the wide registers

kernels='Kernels/EveryWidth*:KernelTable*:CpuFeatures*:OutputStages*:PassInEveryMode*:Caption*:OddSizes*:WholeFrames*'
for cpu in Conroe Haswell; do
    qemu-x86_64 -cpu "$cpu" "$tests" --gtest_brief=1 --gtest_filter="$kernels" >"$folder/notes" 2>&1 ||
        { cat "$folder/notes" && exit 1; }
    echo "$cpu: $(grep PASSED "$folder/notes")"
done
