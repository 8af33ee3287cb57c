#!/usr/bin/env bash
# `clarivex play` on a display of its own, by keys in a terminal and in the window and by the mouse, seen on screenshots; and the
# lines that it says when it cannot play: player_test.sh PATH_OF_CLARIVEX
set -u
clarivex=$1
for program in Xvfb xdotool script ffmpeg; do
    command -v $program >/dev/null || { echo "SKIPPED: there is no $program" && exit 77; }
done
folder=$(mktemp -d)
cd "$folder" || exit 1
mkdir home
export HOME=$folder/home GST_REGISTRY=$folder/registry TERM=xterm
unset WAYLAND_DISPLAY

Xvfb -displayfd 3 -screen 0 900x600x24 -nolisten tcp 3>display 2>xvfb.log &
xvfb=$!
trap 'exec 4>&-; kill $xvfb; wait; rm -rf "$folder"' EXIT

failures=0
fail() {
    printf 'FAILED: %s\n' "$*"
    [ ! -s said ] || sed 's/^/    /' said
    failures=$((failures + 1))
}
# eventually COMMAND…: whether it succeeds, tried a hundred times.
eventually() {
    for ((try = 0; try < 100; ++try)); do
        "$@" && return
        sleep 0.2
    done
    return 1
}
eventually [ -s display ] || { cat xvfb.log && fail 'there is no display' && exit 1; }
export DISPLAY=:$(cat display)

make_film() { timeout 60 ffmpeg -v error -f lavfi -i testsrc2=s=320x240:r=25:d=8 -f lavfi -i sine=d=8 "$@"; }
make_film -c:v ffv1 -c:a flac film.mkv
make_film -map 1 -c:a flac sound.mkv
timeout 60 ffmpeg -v error -f lavfi -i testsrc2=s=12x12:r=25:d=1 -c:v ffv1 tiny.mkv
yes 'No film, but a text.' | head -n 200 >text.mkv

# expect PATTERN ARGUMENT…: exit code 1 and one line on standard error that matches.
expect() {
    local pattern=$1
    shift
    timeout 60 "$clarivex" play "$@" </dev/null >output 2>said
    local code=$?
    [ $code = 1 ] && [ "$(wc -l <said)" = 1 ] && grep -Eq -- "^clarivex: $pattern" said || fail "code $code, not '$pattern': $*"
}
DISPLAY= expect 'there is no display .*DISPLAY is not set' film.mkv
DISPLAY=:nowhere expect 'the display :nowhere cannot be opened' film.mkv
expect 'missing.mkv: cannot be opened for reading: No such file' missing.mkv
expect '[.]: cannot be opened for reading: it is a folder' .
expect 'file:///missing.mkv: cannot be played: ' file:///missing.mkv
expect 'text.mkv: cannot be played: ' text.mkv
expect 'sound.mkv: holds no video' sound.mkv
expect 'tiny.mkv: its pictures are 12x12; sides from 16 ' tiny.mkv
GST_PLUGIN_FEATURE_RANK=avdec_ffv1:NONE expect 'film.mkv: GStreamer lacks .*FFMpeg v1 decoder; install gstreamer1.0-libav$' film.mkv
GST_PLUGIN_FEATURE_RANK=matroskademux:NONE expect 'film.mkv: .*; install gstreamer1.0-plugins-good$' film.mkv
cp "$clarivex" copy
clarivex=./copy expect 'play needs the player .* gstreamer1.0-clarivex' film.mkv

# play ARGUMENT…: starts it on a terminal whose keyboard is descriptor 4; what it says goes to `said`, how it ended to `ended`. An
# interrupt reaches the shell around it too; one without a trap may end before it has told.
mkfifo keyboard
play() {
    rm -f ended said
    local ending="echo \"code \$?, \$(stty -a | grep -o -- '-*icanon')\" >ended"
    timeout 300 script -qec "trap : INT; '$clarivex' play $* 2>said; $ending" /dev/null <keyboard >/dev/null &
    exec 4>keyboard
    eventually grab first || fail 'no picture is shown'
}
press() { printf "$1" >&4; }
grab() { # NAME: what the screen shows, if that is something
    ffmpeg -v error -y -f x11grab -draw_mouse 0 -video_size 800x600 -i "$DISPLAY" -frames:v 1 "$1.png" &&
        [ "$(columns "$1" 40 240 | tr -d '\0' | head -c 1 | wc -c)" = 1 ]
}
columns() { ffmpeg -v error -i "$1.png" -vf "crop=$3:240:$2:0" -pix_fmt rgb24 -f rawvideo - 2>/dev/null; } # NAME FIRST COUNT
same() { cmp -s <(columns "$1" "$3" "$4") <(columns "$2" "$3" "$4"); }                          # NAME NAME FIRST COUNT
says() { eventually grep -q "$1" said || fail "it does not say '$1'"; }
ends() { eventually [ -s ended ] && grep -q "^code $1, icanon$" ended || fail "ended with $(cat ended), not $1, as $2"; }
measures() { xdotool search --name film.mkv getwindowgeometry 2>/dev/null | grep -q "$1"; }

# A picture that stands follows its settings. In the split view it is the plain one on the left and the enhanced one on the right.
is_split_at() { # COLUMN: whether it is, but for columns that share their chroma with the line
    grab split && same split plain 0 $(($1 - 4)) && same split enhanced $(($1 + 6)) $((314 - $1)) &&
        ! same split plain $(($1 - 4)) 10 && ! same split enhanced $(($1 - 4)) 10
}
differs_from() { grab "$1" && ! same "$1" "$2" 0 160 && ! same "$1" "$2" 160 160; }
play --paused --start 1 --mode never --lighting off --noise off film.mkv
grep -q 'note: film.mkv: there is no sound device' said || fail 'nothing is said of the missing sound'
grab enhanced
press e
says 'enhancement off'
eventually differs_from plain enhanced || fail 'switching off does not change the picture'
press s
says 'split view on'
eventually is_split_at 160 || fail 'the split view is not plain on the left and enhanced on the right'
xdotool mousemove 80 100 mousedown 1 mousemove 100 100 mouseup 1
eventually is_split_at 100 || fail 'the mouse does not move the line'
xdotool key bracketright
says 'split at 35 %'
eventually is_split_at 112 || fail 'a key in the window does not move the line'
xdotool key f
eventually measures 900x600 || fail 'full screen is not the whole screen'
xdotool mousemove 249 300 mousedown 1 mouseup 1  # a quarter of the picture, which is 800 wide there
xdotool key Escape
eventually measures 320x240 || fail 'the window does not get its size back'
eventually is_split_at 80 || fail 'the mouse does not move the line in full screen'
press '++'
says 'sharpness 1.2'
press '\033[C'
says 'at 0:06'
press '\033OD.'
says 'next frame'
[ "$(grep -c 'at 0:01' said)" = 1 ] || fail 'it does not go back'
press '\033[A '
ends 0 'the film does at its end'

# Whatever ends it puts the terminal back.
play film.mkv
eventually measures 480x360 || fail 'the window is not as large as the picture'
xdotool search --name film.mkv windowclose
ends 0 'closing the window does'
play film.mkv
press '\003'
ends 130 'an interrupt does'
grep -q 'clarivex: film.mkv: interrupted at 0:0' said || fail 'it does not say where it was interrupted'
play film.mkv
xdotool key q
ends 0 'q does'

[ $failures = 0 ]
