#!/usr/bin/env bash
# Checks that every source is named in a build file of its folder: what is not named is not built, and a test that is not
# built is not run.
set -eu
cd "$(dirname "$0")/.."

# names WORD FILE…: whether a build file among them has the word
names() {
    local word=$1
    shift
    grep -qsE "(^|[[:space:](])$word([[:space:])]|\$)" "$@"
}

bad=0
while read -r source; do
    [ -f "$source" ] || continue
    folder=${source%%/*}
    name=$(basename "$source" .cpp)
    # A build file beside the source names it alone, the floor's with the folders between. Fuzzers go by name, and what is
    # compiled for every set of kernels goes by the set's.
    set=${name#kernels_}
    set=${set#lanes_}
    names "${source#"$folder"/}" "$folder"/CMakeLists.txt "$folder"/*.cmake ||
        names "$name.cpp" "$(dirname "$source")/CMakeLists.txt" ||
        names "add_fuzzer\\($name" "$folder/CMakeLists.txt" ||
        { [ "$set" != "$name" ] && names "add_kernels\\($set" simd/CMakeLists.txt; } || {
        echo "$source is not built: name it in $folder/CMakeLists.txt" >&2
        bad=1
    }
done < <(git ls-files --cached --others --exclude-standard '*.cpp')
exit $bad
