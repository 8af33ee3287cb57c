#!/usr/bin/env bash
# Fails when a Windows program or library needs a DLL that does not come with Windows: check_imports.sh OBJDUMP FILE…
set -eu

objdump=$1
shift
for file in "$@"; do
    imports=$("$objdump" --private-headers "$file" | sed -n 's/^\s*DLL Name: //p')
    for dll in $imports; do
        case ${dll,,} in
        advapi32.dll | comctl32.dll | gdi32.dll | kernel32.dll | msdmo.dll | msvcrt.dll | ole32.dll | oleaut32.dll | shell32.dll | \
            user32.dll | version.dll | wininet.dll | winmm.dll) ;;
        *)
            echo "$file imports $dll, which is not on the list of system DLLs in $0" >&2
            exit 1
            ;;
        esac
    done
    [ -n "$imports" ] || { echo "$file: no imports found" >&2; exit 1; }
done
