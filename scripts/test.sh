#!/usr/bin/env bash
# Builds and tests each preset named, the later ones also when an earlier one fails, and closes with a line for each.
set -u -o pipefail
cd "$(dirname "$0")/.." || exit

result=0
closing=()
for preset in "$@"; do
    log=build/$preset/test.log
    if ! scripts/build.sh "$preset"; then
        closing+=("$preset: not built")
        result=1
        continue
    fi
    ctest --preset "$preset" --parallel "$(nproc)" | tee "$log" || result=1
    closing+=("$preset: $(grep 'tests passed' "$log" || echo 'no tests were run')")
done

printf '\n'
printf '%s\n' "${closing[@]}"
exit $result
