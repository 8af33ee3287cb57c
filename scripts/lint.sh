#!/usr/bin/env bash
# Checks layout, floors and clang-tidy's findings, and changes nothing. `clang-format -i FILE` mends the layout.
set -eu
cd "$(dirname "$0")/.."

git ls-files --cached --others --exclude-standard -z '*.h' '*.cpp' '*.inl' | xargs -0 clang-format --dry-run -Werror
scripts/check_floors.sh
cmake --preset native
run-clang-tidy -quiet -p build/native "^$PWD/(platform|runtime|simd|algorithms|overlay|engine|pipeline|shell|host)/"
