#!/usr/bin/env bash
# GStreamer's own programs with the plug-in, as people use it: plugin_test.sh PATH_OF_CLARIVEX FOLDER_OF_THE_PLUGIN
set -eu
clarivex=$1
export GST_PLUGIN_PATH=$2 HOME
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
HOME=$folder
export GST_REGISTRY=$folder/registry GST_DEBUG_FILE=$folder/log GST_DEBUG=1,clarivex:2 G_DEBUG=fatal-warnings

fail() {
    echo "FAILED: $*" >&2
    exit 1
}
launch() { timeout 60 gst-launch-1.0 "$@" >said 2>&1 || { cat said >&2 && fail "gst-launch-1.0 $*"; }; }

# The element is described, without a complaint; so are its properties and what they take.
timeout 60 gst-inspect-1.0 clarivex >page 2>errors
[ ! -s errors ] || fail "gst-inspect-1.0: $(cat errors)"
for property in caption enabled lighting mode noise sharpness split; do
    grep -A 1 -E "^  $property +: [A-Z]" page | grep -q 'controllable.*PLAYING' || fail "$property is not described"
done

# Its bytes are those of the command line, which takes the same video as a file.
timeout 60 ffmpeg -v error -f lavfi -i testsrc2=s=336x240:r=25:d=1 -f lavfi -i sine=d=1 -pix_fmt yuv420p -c:v ffv1 -c:a flac film.mkv
for format in I420 YV12 NV12; do
    launch filesrc location=film.mkv ! matroskademux ! avdec_ffv1 ! videoconvert ! video/x-raw,format=$format ! clarivex ! \
        videoconvert ! video/x-raw,format=I420 ! y4menc ! filesink location=$format.y4m
    timeout 60 "$clarivex" enhance --quiet film.mkv - | cmp <(tail -n +2 $format.y4m) <(cat - | tail -n +2) || fail "$format differs"
done

# A player plays films with it to their end, interlaced ones deinterlaced before it, and all of their sound.
timeout 60 ffmpeg -v error -f lavfi -i testsrc2=s=720x576:r=25:d=1 -f lavfi -i sine=d=1 -vf setfield=tff -flags +ildct+ilme \
    -c:v mpeg2video -c:a flac interlaced.mkv
for film in film:25:504x360 interlaced:50:1080x864; do
    IFS=: read -r name frames size <<<"$film"
    launch playbin "uri=file://$folder/$name.mkv" video-filter=clarivex \
        video-sink="filesink location=$name.raw" audio-sink="filesink location=$name.pcm"
    grep -q 'Got EOS' said || fail "$name is not played to its end"
    [ "$(stat -c %s $name.raw)" = $((frames * ${size%x*} * ${size#*x} * 3 / 2)) ] || fail "$name does not give $frames frames of $size"
    [ "$(stat -c %s $name.pcm)" -ge 88200 ] || fail "$name is played without its sound"
done
[ ! -s log ] || fail "GStreamer's log: $(cat log)"
