#!/usr/bin/env bash
# Checks layout, floors, that every source is built, and clang-tidy's findings; changes nothing. `scripts/format.sh` mends
# the layout. lint.sh --quick leaves out clang-tidy, which takes longer than all the rest of a check.
set -eu
cd "$(dirname "$0")/.."
case ${1:-} in
'' | --quick) ;;
*) echo "lint.sh: unknown argument '$1'; use --quick or nothing" >&2 && exit 2 ;;
esac

bad=0
scripts/format.sh --check || bad=1
scripts/check_floors.sh || bad=1
scripts/check_sources.sh || bad=1
if [ "${1:-}" != --quick ]; then
    cmake --preset native
    run-clang-tidy -quiet -p build/native "^$PWD/(platform|runtime|simd|algorithms|overlay|engine|pipeline|play|library|shell|host|gstreamer)/" ||
        bad=1
fi
exit $bad
