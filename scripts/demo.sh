#!/usr/bin/env bash
# Enhances a short film of a photograph, or the first seconds of VIDEO=path, any film, and sets a frame enlarged plainly and
# enhanced beside each other. Leaves demo/enhanced.mkv and demo/compare.png. Needs ffmpeg and build/native/clarivex.
set -eu
video=${VIDEO:+$(realpath "$VIDEO")}
cd "$(dirname "$0")/.."

clarivex=build/native/clarivex
[ -x "$clarivex" ] || { echo "demo.sh: $clarivex is missing; run 'make demo'" >&2 && exit 1; }
mkdir -p demo
bt709=(-colorspace bt709 -color_primaries bt709 -color_trc bt709 -color_range tv)

make_film() {  # FFMPEG_ARGUMENT…: demo/source.mkv
    ffmpeg -hide_banner -loglevel error -nostdin -y "$@" -pix_fmt yuv420p "${bt709[@]}" demo/source.mkv
}

# A photograph that a Debian package carries, taken out without installing anything: demo/coffee.png.
fetch_photograph() {
    [ ! -s demo/coffee.png ] || return 0
    local folder
    folder=$(mktemp -d)
    (cd "$folder" && apt-get download python3-skimage && dpkg-deb -x python3-skimage_*.deb .) >"$folder/log" 2>&1 &&
        cp "$folder/usr/lib/python3/dist-packages/skimage/data/coffee.png" demo/ || true
    rm -r "$folder"
    [ -s demo/coffee.png ]
}

rm -f demo/PICTURE.txt
if [ -n "$video" ]; then
    echo "Taking the first 5 seconds of $video"
    source=$video
elif fetch_photograph; then
    echo "Making a film of 4 seconds: a slow pan over a photograph (demo/PICTURE.txt tells whose)"
    # The window moves over the photograph at four times its size, so by quarters of a pixel.
    make_film -i demo/coffee.png -vf "scale=2400:1600,loop=loop=99:size=1,setpts=N/25/TB,
        crop=2276:1280:124*n/100:320*n/100:exact=1,scale=512:288:flags=lanczos:out_color_matrix=bt709" \
        -r 25 -crf 18
    cat >demo/PICTURE.txt <<'END'
coffee.png: "Coffee cup", a photograph by Rachel Michetti, courtesy of Pikolo Espresso Bar.
Licence: CC0, no copyright restrictions.
Source: scikit-image's sample data, skimage/data/coffee.png in the Debian package python3-skimage.
source.mkv, enhanced.mkv and compare.png are made of it.
END
    source=demo/source.mkv
else
    echo "The photograph cannot be had (apt-get download python3-skimage): making a clip of 3 seconds"
    # Fine detail that moves, beside letters, edges and flat areas, softened as an ordinary video is.
    make_film -f lavfi -i mandelbrot=size=640x480:rate=25:start_scale=0.6:end_scale=0.1:end_pts=75 \
        -f lavfi -i testsrc2=size=320x480:rate=25 \
        -filter_complex '[0][1]overlay=x=320:shortest=0,gblur=sigma=0.7,scale=out_color_matrix=bt709' -t 3 -crf 18
    source=demo/source.mkv
fi

"$clarivex" enhance --overwrite --timing --duration 5 "$source" demo/enhanced.mkv
"$clarivex" compare --overwrite "$source" demo/compare.png

echo "demo/enhanced.mkv: the enhanced film"
echo "demo/compare.png:  a frame from the middle, enlarged plainly on the left and enhanced on the right"
