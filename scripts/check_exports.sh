#!/usr/bin/env bash
# Fails when a shared library shows other symbols than its version script names: check_exports.sh NM LIBRARY EXPORTS.map
set -eu

shown=$("$1" --dynamic --defined-only "$2" | awk '$2 != "A" { sub(/@.*/, "", $3); print $3 }' | sort)
named=$(sed -n 's/^ *\([a-z_0-9]*\);$/\1/p' "$3" | sort)
[ -n "$named" ] && diff <(echo "$named") <(echo "$shown") || {
    echo "$2 shows other symbols (>) than $3 names (<)" >&2
    exit 1
}
