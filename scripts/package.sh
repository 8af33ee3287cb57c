#!/usr/bin/env bash
# Packs what a Windows user needs into build/clarivex-VERSION-windows.zip, VERSION being that of `clarivex --version`.
# Needs the presets windows-x86 and windows-x64 built. Another build folder than build/: package.sh FOLDER
set -eu
folder=$(realpath "${1:-$(dirname "$0")/../build}")
cd "$(dirname "$0")"
. package/windows_files.sh
name=clarivex-$version-windows

strip_into i686 windows-x86/clarivex.exe clarivex.exe
strip_into i686 windows-x86/WMP_CVX.dll x86/WMP_CVX.dll
strip_into x86_64 windows-x64/WMP_CVX.dll x64/WMP_CVX.dll
strip_into i686 windows-x86/clarivex_video.dll x86/clarivex_video.dll
strip_into x86_64 windows-x64/clarivex_video.dll x64/clarivex_video.dll

for text in install.cmd uninstall.cmd README.txt; do
    sed "s/@VERSION@/$version/; s/\$/\r/" "package/$text" >"$stage/$name/$text"
done

rm -f "$folder/$name.zip"
(cd "$stage" && cmake -E tar cf "$folder/$name.zip" --format=zip "$name")
echo "$folder/$name.zip"
