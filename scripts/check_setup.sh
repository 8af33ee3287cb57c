#!/usr/bin/env bash
# Installs, upgrades and removes under Wine, in a fresh prefix of its own, and compares what is there with what was:
# check_setup.sh SETUP.exe [BUILD]. Needs `fake_registrar` of both Windows presets and `without_rights` of windows-x86 in BUILD, build/ unless given.
set -eu
[ -n "${DISPLAY:-}" ] || exec xvfb-run --auto-servernum "$0" "$@"
setup=$(realpath "$1")
build=$(realpath "${2:-$(dirname "$0")/../build}")
work=$(mktemp -d)
export WINEPREFIX=$work/prefix WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml,winemenubuilder.exe="
trap 'wineserver -k || true; rm -rf "$work"' EXIT
place="$WINEPREFIX/drive_c/Program Files/Clarivex"
classes='HKLM\Software\Classes\CLSID'
plugin='{5C1E8A47-93D2-4B06-B7F1-2A6D90CE3F18}'
effect='{FB43CBCA-4D38-4B73-BF33-3CE6E82ED950}'
registrar='{5569E7F5-424B-4B93-89CA-79D17924689A}'
environment='HKLM\System\CurrentControlSet\Control\Session Manager\Environment'
apps='HKLM\Software\Microsoft\Windows\CurrentVersion\Uninstall\Clarivex'

fail() {
    echo "check_setup.sh: $*" >&2
    exit 1
}
# ends CODE PROGRAM…: with this code of Windows, of which a shell sees the lowest byte.
ends() {
    local wanted=$(($1 % 256)) code=0
    shift
    timeout 300 wine "$@" >"$work/said" || code=$?
    [ $code = $wanted ] || fail "$* ends with $code, not with $wanted: $(cat "$work/said")"
}
says() { grep -q "$1" "$work/said" || fail "instead of '$1' it says: $(cat "$work/said")"; }
# value BITS KEY [NAME]: a text of the registry, of its default value without NAME; empty where there is none.
value() {
    wine reg query "$2" ${3:+/v} "${3:-/ve}" "/reg:$1" 2>/dev/null | tr -d '\r' | sed -nE 's/^    .*    REG_(EXPAND_)?(SZ|DWORD)    //p'
}
# Every key and value of the registry, but for the devices and fonts that Wine finds anew at each start, and every file, but for the empty
# folder among the temporary ones that NSIS leaves of an uninstaller.
state() {
    wineserver -w
    awk -v found='^.System..CurrentControlSet..(Enum|Control..(Class|Video|DeviceClasses))|NetworkCards|^.Hardware|CurrentVersion..Fonts.$' \
        '/^\[/ { sub(/ [0-9]+$/, ""); counts = $0 !~ found } counts && !/^#time=/' "$WINEPREFIX"/{system,user,userdef}.reg
    (cd "$WINEPREFIX" && find . -type d ! -name '~nsu*.tmp' -print -o -type f ! -path './*.reg' ! -name .update-timestamp -printf '%p %s\n' | sort)
    find "$place" -type f -exec sha256sum {} + 2>/dev/null | sort
}
same() { diff "$work/$1" <(state) >"$work/differs" || fail "$2: $(head -40 "$work/differs")"; }
# What is held by `clarivex` with the installed plug-in, until release.
hold() {
    mkfifo "$work/held" 2>/dev/null || true
    (cd "$place" && exec wine bin/clarivex.exe enhance --plugin 'x86\WMP_CVX.dll' - - <"$work/held" >/dev/null 2>&1) &
    exec 9>"$work/held"
    printf 'YUV4MPEG2 W64 H48 F25:1\n' >&9
    sleep 5
    wine cmd /c 'del "C:\Program Files\Clarivex\x86\WMP_CVX.dll"' >/dev/null 2>&1 || true
    [ -e "$place/x86/WMP_CVX.dll" ] || fail "the plug-in is not held"
}
release() { exec 9>&- && wait; }
restart() { wine wineboot -r && wineserver -w; }

wine wineboot -i
long=$(printf 'C:\\folder %d;' {1..200})
wine reg add "$environment" /v PATH /t REG_EXPAND_SZ /d "%SystemRoot%\\system32;$long" /f >/dev/null
restart
ends 87 "$setup" /S /PARTS=
state >"$work/before"
ends 87 "$setup" /S /PARTS=program,film
says "'film', which is no part"
ends 1603 "$setup" /S /PARTS=plugin
says 'plug-in registrar is missing'
ends 5 "$build/windows-x86/without_rights.exe" "Z:$setup /S"
says 'needs administrator rights'
same before 'a refusal leaves'

for bits in 32:x86 64:x64; do
    wine reg add "$classes\\$registrar\\InprocServer32" /ve /d "Z:$build/windows-${bits#*:}/fake_registrar.dll" "/reg:${bits%:*}" /f >/dev/null
    wine reg add 'HKLM\Software\Fake Player' "/reg:${bits%:*}" /f >/dev/null
done
restart
state >"$work/before"
FAKE_REGISTRAR_REFUSES=64 ends 1603 "$setup" /S
says 'x64.WMP_CVX.dll could not be registered: regsvr32 ended with code'
same before 'a failed installation leaves'

ends 0 "$setup" /S
for bits in 32:x86 64:x64; do
    for module in "$plugin:WMP_CVX.dll" "$effect:clarivex_video.dll"; do
        path=${bits#*:}\\${module#*:}
        [ "$(value "${bits%:*}" "$classes\\${module%:*}\\InprocServer32")" = "C:\\Program Files\\Clarivex\\$path" ] ||
            fail "$path is not registered for ${bits%:*} bits"
    done
    wine reg query "HKLM\\Software\\Fake Player\\$plugin" "/reg:${bits%:*}" >/dev/null || fail "the player of ${bits%:*} bits does not list it"
done
[ "$(value 64 "$environment" PATH)" = "%SystemRoot%\\system32;$long;C:\\Program Files\\Clarivex\\bin" ] || fail "PATH is $(value 64 "$environment" PATH)"
ends 0 "$place/bin/clarivex.exe" --version
version=$(sed -n 's/.*versionText = "\(.*\)".*/\1/p' "$build/windows-x86/generated/runtime/version.h")
says "$version"
for entry in DisplayName=Clarivex "DisplayVersion=$version" 'Publisher=Tessel Works' NoModify=0x1 NoRepair=0x1 \
    'UninstallString="C:\Program Files\Clarivex\uninstall.exe"' 'QuietUninstallString="C:\Program Files\Clarivex\uninstall.exe" /S' \
    "EstimatedSize=$(printf '0x%x' $((($(find "$place" -type f -printf '%s+')0) / 1024)))"; do
    [ "$(value 64 "$apps" "${entry%%=*}")" = "${entry#*=}" ] || fail "${entry%%=*} is $(value 64 "$apps" "${entry%%=*}"), not ${entry#*=}"
done
state >"$work/installed"

# An older version, which a player holds.
for file in x86/WMP_CVX.dll x64/WMP_CVX.dll bin/clarivex.exe; do echo older >>"$place/$file"; done
state >"$work/older"
hold
FAKE_REGISTRAR_REFUSES=64 ends 1603 "$setup" /S
release
same older 'a failed upgrade leaves'
hold
ends 3010 "$setup" /S
[ -e "$place/clarivex-old1/x86/WMP_CVX.dll" ] || fail 'the file in use is not kept aside'
release
restart
same installed 'an upgrade leaves'

ends 0 "$setup" /S /PARTS=program
[ -z "$(value 32 "$classes\\$plugin")$(value 64 "$classes\\$plugin")" ] || fail 'a plug-in that is left out stays registered'
[ "$(cd "$place" && echo * */*)" = 'bin uninstall.exe bin/clarivex.exe' ] || fail "with the program alone there is $(find "$place")"
ends 0 "$setup" /S /PARTS=plugin,program
hold
ends 0 "$place/uninstall.exe" /S
release
restart
same before 'removal leaves'
echo "check_setup.sh: installed, upgraded and removed; nothing is left"
