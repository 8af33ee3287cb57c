#!/usr/bin/env bash
# Paints the Windows settings page under Wine and Xvfb into a picture: show_settings_page.sh [OUTPUT.png [TESTS.exe]]
# Without arguments it builds the tests and renews docs/settings-page.png.
set -eu
cd "$(dirname "$0")/.."

output=${1:-docs/settings-page.png}
tests=${2:-build/windows-x86/clarivex_tests.exe}
[ $# -ge 2 ] || scripts/build.sh windows-x86 clarivex_tests

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
CLARIVEX_PAGE_PICTURE=Z:$folder/page.bmp \
    tests/support/run_under_wine.sh "$tests" --gtest_filter='PropertyPage.IsPaintedIntoAFile' --gtest_brief=1
mkdir -p "$(dirname "$output")"
ffmpeg -loglevel error -y -i "$folder/page.bmp" -pix_fmt rgb24 "$output"
echo "show_settings_page.sh: $output is painted"
