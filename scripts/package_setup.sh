#!/usr/bin/env bash
# Packs build/clarivex-VERSION-setup.exe, which installs in Windows what the zip holds, and checks it under Wine. Needs of the presets
# windows-x86 and windows-x64 what package.sh and check_setup.sh need. Another build folder than build/: package_setup.sh FOLDER
set -eu
folder=$(realpath "${1:-$(dirname "$0")/../build}")
cd "$(dirname "$0")"
. package/windows_files.sh
name=clarivex-$version-setup

strip_into i686 windows-x86/clarivex.exe clarivex.exe
for module in WMP_CVX.dll clarivex_video.dll; do
    strip_into i686 "windows-x86/$module" "x86/$module"
    strip_into x86_64 "windows-x64/$module" "x64/$module"
done

makensis -V2 -WX -NOCD "-DVERSION=$version" "-DFILES=$stage/$name" "-DOUTPUT=$stage/$name.exe" \
    -X'!addincludedir package' package/setup.nsi
./check_setup.sh "$stage/$name.exe" "$folder"
mv "$stage/$name.exe" "$folder"
echo "$folder/$name.exe"
