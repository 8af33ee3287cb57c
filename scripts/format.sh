#!/usr/bin/env bash
# Lays out the sources named, or all, by .clang-format: format.sh [--check] [FILE...]. With --check nothing is changed, and
# the files that are not laid out so are named.
#
# One statement goes without braces unless it spans a choice that would be read wrongly. clang-format takes them away, but
# then breaks lambdas badly: a second pass, without that rule, lays out anew.
set -eu
cd "$(dirname "$0")/.."
check=
[ "${1:-}" != --check ] || { check=1; shift; }
style=$(mktemp) && out=$(mktemp)
trap 'rm -f "$style" "$out"' EXIT
{ cat .clang-format && echo 'RemoveBracesLLVM: true'; } > "$style"

bad=0
if [ $# -eq 0 ]; then
    readarray -d '' -t files < <(git ls-files --cached --others --exclude-standard -z '*.h' '*.cpp' '*.inl')
    set -- "${files[@]}"
fi
for file in "$@"; do
    [ -f "$file" ] || continue
    clang-format --style="file:$style" "$file" | clang-format --style=file --assume-filename="$file" > "$out"
    cmp -s "$file" "$out" && continue
    if [ "$check" ]; then
        echo "$file: not laid out by .clang-format; scripts/format.sh $file does it" >&2
        bad=1
    else
        cat "$out" > "$file"
    fi
done
exit $bad
