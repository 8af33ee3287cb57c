#!/usr/bin/env bash
# Enhances a short clip, or the first seconds of VIDEO=path (anything ffmpeg reads), and sets a frame before and after
# side by side. Leaves demo/enhanced.y4m and demo/compare.png. Needs ffmpeg and build/native/clarivex.
set -eu
video=${VIDEO:+$(realpath "$VIDEO")}
cd "$(dirname "$0")/.."

clarivex=build/native/clarivex
[ -x "$clarivex" ] || { echo "demo.sh: $clarivex is missing; run 'make demo'" >&2 && exit 1; }
mkdir -p demo
ffmpeg=(ffmpeg -hide_banner -loglevel error -nostdin -y)

if [ -n "$video" ]; then
    echo "Taking the first 5 seconds of $video"
    "${ffmpeg[@]}" -i "$video" -t 5 -an -sn -pix_fmt yuv420p -f yuv4mpegpipe demo/source.y4m
else
    echo "Making a clip of 3 seconds"
    # Fine detail that moves, beside letters, edges and flat areas, softened as an ordinary video is.
    "${ffmpeg[@]}" -f lavfi -i mandelbrot=size=640x480:rate=25:start_scale=0.6:end_scale=0.1:end_pts=75 \
        -f lavfi -i testsrc2=size=320x480:rate=25 \
        -filter_complex '[0][1]overlay=x=320:shortest=0,gblur=sigma=0.7,format=yuv420p' \
        -t 3 -f yuv4mpegpipe demo/source.y4m
fi

"$clarivex" enhance --timing demo/source.y4m demo/enhanced.y4m

# A frame from the middle: the first ones of a film are often black.
read -r _ width height _ < <(head -n 1 demo/enhanced.y4m)  # the first tags are W and H, as in ffmpeg's streams
width=${width#W} height=${height#H}
frame_bytes=$((6 + width * height + 2 * ((width + 1) / 2) * ((height + 1) / 2)))
middle=$(($(wc -c <demo/enhanced.y4m) / frame_bytes / 2))
"${ffmpeg[@]}" -i demo/source.y4m -i demo/enhanced.y4m -filter_complex \
    "[0]select=eq(n\,$middle),scale=$width:$height:flags=bilinear,setsar=1[before];
     [1]select=eq(n\,$middle),setsar=1[after];
     [before][after]hstack" -frames:v 1 demo/compare.png
rm demo/source.y4m

echo "demo/enhanced.y4m: the enhanced video"
echo "demo/compare.png:  frame $middle, enlarged plainly on the left and enhanced on the right"
