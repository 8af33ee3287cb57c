#!/usr/bin/env bash
# Fails when a kernel object exports more than its kernel tables, or kernels for another object's table, which are named after
# what they need, or its lanes' tests more than their checks. An inline function compiled for a wide processor could otherwise
# be the copy that the linker keeps for all callers:
# check_kernel_objects.sh NM OBJECT…
set -eu

nm=$1
shift
strangers=$("$nm" --print-file-name --defined-only --extern-only "$@" | grep -vE ' _?_ZN8clarivex[0-9]+([a-zA-Z0-9]+(Kernels|LaneChecks)E$|[a-zA-Z]+VbmiE)' || true)
if [ -n "$strangers" ]; then
    printf 'These symbols leave a kernel object; put them into an unnamed namespace:\n%s\n' "$strangers" >&2
    exit 1
fi
