#!/usr/bin/env bash
# Fails when code for 64-bit Windows moves a vector of more than 16 bytes with an instruction that faults at unaligned
# addresses: the stack there is aligned to 16 bytes and no further. check_wide_moves.sh OBJDUMP OBJECT…
set -eu

objdump=$1
shift
code=$("$objdump" --disassemble --no-show-raw-insn "$@")
grep -q 'vmovdqu.*(.*%[yz]mm' <<<"$code" || { echo "no wide moves found; is this a kernel object?" >&2; exit 1; }
if grep -E 'vmov(aps|apd|dqa|dqa32|dqa64)\s.*%[yz]mm' <<<"$code" | grep -F '(' >&2; then
    echo 'These moves want more alignment than the stack has; assemble with -muse-unaligned-vector-move' >&2
    exit 1
fi
