#!/usr/bin/env bash
# Runs every fuzzer for so many seconds: fuzz.sh [SECONDS], 60 unless told. With clang's fuzzing engine where clang has it,
# else with the project's own driver. What crashes is kept in build/fuzz-crashes, and the command that repeats it printed.
set -u
cd "$(dirname "$0")/.." || exit
seconds=${1:-60}
[[ $seconds =~ ^[1-9][0-9]*$ ]] || { echo "fuzz.sh: '$seconds': SECONDS must be a whole number from 1" >&2 && exit 2; }

program=$(mktemp)
engine='extern "C" int LLVMFuzzerTestOneInput(const unsigned char*, unsigned long) { return 0; }'
if clang++ -fsanitize=fuzzer -x c++ - -o "$program" <<<"$engine" 2>/dev/null; then preset=fuzz; else preset=asan; fi
rm "$program"
scripts/build.sh "$preset" fuzzers || exit

crashes=$PWD/build/fuzz-crashes
mkdir -p "$crashes"
failed=0
for source in fuzz/*.cpp; do
    name=$(basename "$source" .cpp)
    fuzzer=$PWD/build/$preset/fuzz_$name
    kept=$crashes/fuzz_$name.input
    echo "== $name, $seconds seconds; inputs tried:"
    if [ $preset = fuzz ]; then
        found=build/fuzz/corpus/$name  # inputs that reached new code, for the next time
        mkdir -p "$found"
        "$fuzzer" -max_total_time="$seconds" -timeout=60 -rss_limit_mb=4096 -verbosity=0 -print_final_stats=1 \
            -exact_artifact_path="$kept" "$found" "fuzz/corpus/$name" 2>"$crashes/log" &&
            sed -n 's/^stat::number_of_executed_units: *//p' "$crashes/log" && continue
        sed '/Recommended dictionary/,$d' "$crashes/log" >&2
        again="$fuzzer $kept"
    else
        (cd "$crashes" && "$fuzzer" 1000000000 "$seconds" "$OLDPWD/fuzz/corpus/$name"/*) && continue
        again="$fuzzer 0 0 $kept"
    fi
    echo "fuzz.sh: $name found a fault; this gives it the same input again: $again" >&2
    failed=1
done
exit $failed
