#!/usr/bin/env bash
# Checks layout, floors and clang-tidy's findings, and changes nothing. `scripts/format.sh` mends the layout.
set -eu
cd "$(dirname "$0")/.."

scripts/format.sh --check
scripts/check_floors.sh
cmake --preset native
run-clang-tidy -quiet -p build/native "^$PWD/(platform|runtime|simd|algorithms|overlay|engine|pipeline|shell|host)/"
