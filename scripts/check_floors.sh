#!/usr/bin/env bash
# Checks the house rules that a compiler does not: a folder includes only itself and folders below its own floor, every
# include is a path from the repository root, and only platform/ asks which system it is compiled for.
set -eu
cd "$(dirname "$0")/.."

find platform runtime simd algorithms overlay engine pipeline play library shell host gstreamer -name '*.h' -o -name '*.cpp' -o -name '*.inl' |
    sort | xargs awk '
    BEGIN {
        floors = split("platform|runtime play|simd|algorithms|engine overlay|pipeline|library shell|host gstreamer", rows, "|")
        for (floor = 1; floor <= floors; ++floor) {
            count = split(rows[floor], folders, " ")
            for (i = 1; i <= count; ++i) floorOf[folders[i]] = floor
        }
    }
    function Complain(text) { printf "%s:%d: %s\n", FILENAME, FNR, text; bad = 1 }
    FNR == 1 { own = FILENAME; sub("/.*", "", own) }
    /^[ \t]*#[ \t]*include[ \t]*"/ {
        split($0, parts, "\"")
        target = parts[2]
        folder = target
        sub("/.*", "", folder)
        if (!(folder in floorOf))
            Complain("\"" target "\" is not a path from the repository root")
        else if (folder != own && floorOf[folder] >= floorOf[own])
            Complain(own "/ may not include " folder "/, which is not below it")
    }
    own != "platform" && /^[ \t]*#.*(_WIN32|_WIN64|__MINGW|__linux__|__unix__)/ {
        Complain("only platform/ asks which system it is compiled for")
    }
    END { exit bad }' >&2
