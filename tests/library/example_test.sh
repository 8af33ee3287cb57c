#!/usr/bin/env bash
# The program of docs/library.md gives, frame for frame, what the command line gives through the media object:
# example_test.sh CLARIVEX ENHANCE_RAW
set -eu
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"

for size in 96x64 354x288; do
    ffmpeg -loglevel error -f lavfi -i "testsrc2=size=$size:rate=25" -frames:v 20 -pix_fmt yuv420p -f yuv4mpegpipe in.y4m
    ffmpeg -loglevel error -y -i in.y4m -f rawvideo in.i420
    "$1" enhance --quiet --overwrite --format iyuv --padding keep in.y4m expected.y4m
    ffmpeg -loglevel error -y -i expected.y4m -f rawvideo expected.i420
    "$2" "${size%x*}" "${size#*x}" <in.i420 >out.i420
    cmp expected.i420 out.i420
    rm in.y4m
done
code=0
"$2" 3 3 2>said || code=$?
[ "$code" = 2 ] && grep -q 'a side of the picture is below 16' said
