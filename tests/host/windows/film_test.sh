#!/usr/bin/env bash
# Sends films that ffmpeg makes here through clarivex.exe, which reads and writes them by way of an ffmpeg.exe, and compares
# with what ffmpeg and the exact door tell: film_test.sh RUNNER PATH_OF_CLARIVEX PATH_OF_FFMPEG
set -u
runner=$1 clarivex=$(realpath "$2") bridge=$(realpath "$3")
export WINEPREFIX="${WINEPREFIX:-$(dirname "$clarivex")/wine-prefix}" LC_ALL=C.UTF-8
if [ -z "${DISPLAY:-}" ]; then exec xvfb-run --auto-servernum "$0" "$@"; fi
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder" || exit 1

failures=0
fail() {
    printf 'FAILED: %s\n' "$*"
    [ -s errors ] && sed 's/^/    /' errors
    failures=$((failures + 1))
}
run() { timeout 100 "$runner" "$clarivex" "$@"; }
ff() { timeout 60 ffmpeg -hide_banner -loglevel error -nostdin -y "$@"; }

# expect CODE PATTERN ARGUMENT…: the exit code, words on standard error, and there no line of any other program.
expect() {
    local code=$1 pattern=$2
    shift 2
    run "$@" </dev/null >output 2>errors
    local got=$?
    [ "$got" = "$code" ] || fail "exit code $got instead of $code: $*"
    grep -Eq -- "$pattern" errors || fail "standard error does not say '$pattern': $*"
    ! grep -qv '^clarivex: ' errors || fail "a line of another than clarivex: $*"
}
told() { ffprobe -v error -select_streams "$2" -show_entries "$3" -of csv=p=0 "$1" | sed 's/,*$//; /^$/d'; }
samples() { ff -i "file:$1" "${@:2}" -map 0:v:0 -fps_mode passthrough -f rawvideo - | md5sum; }
sound() { ff -i "$1" -map 0:a -c copy -f streamhash - | cut -d = -f 2; }

x264='-c:v libx264 -preset ultrafast -pix_fmt yuv420p'
bt709='-colorspace bt709 -color_primaries bt709 -color_trc bt709 -color_range tv'
printf '1\n00:00:00,100 --> 00:00:00,300\nwords\n' >words.srt
ff -f lavfi -i testsrc2=s=160x120:d=0.4,setsar=16/11 -f lavfi -i sine=d=0.4 -i words.srt $x264 $bt709 -c:a aac rich.mkv
ff -f lavfi -i sine=d=0.1 sound.wav && head -c 3000 "$clarivex" >junk.mkv && echo mine >mine.mkv

# Without an ffmpeg.exe one line tells what is needed.
echo 'YUV4MPEG2 W32 H16 F25:1' >empty.y4m
for files in 'rich.mkv none.mkv' 'rich.mkv none.y4m' 'empty.y4m none.mkv'; do
    expect 1 'needs an ffmpeg.exe, which is neither in PATH nor beside clarivex.exe' enhance $files
    [ "$(wc -l <errors)" = 1 ] && [ ! -e none.mkv ] && [ ! -e none.mkv.part ] || fail "left of $files"
done

# In PATH it is found. Frames are those of the exact door, whatever the film is; tags, times and other streams come along.
export WINEPATH="Z:${bridge%/*}"
fields=codec_name,width,height,sample_aspect_ratio,pix_fmt,color_range,color_space,color_primaries
while IFS='|' read -r name source coding filters options said expected; do
    [ -z "$source" ] || ff -f lavfi -i "testsrc2=$source" ${coding/X264/$x264} "$name"
    expect 0 "$said" enhance --lossless -y $options "$name" film.mkv
    sought=${options/--start/-ss}
    ff ${sought/--frames*/} -i "$name" -vf "${filters:-null},format=yuv420p" -fps_mode passthrough -f yuv4mpegpipe door.y4m
    run enhance --quiet ${options/--start*/} door.y4m enhanced.y4m
    [ "$(samples film.mkv)" = "$(samples enhanced.y4m)" ] || fail "pictures of $name"
    got=$(told film.mkv v:0 stream=$fields | sed 's/,tv,/,/')
    [ "$got" = "ffv1,$expected" ] || fail "film of $name: $got"
done <<'END'
rich.mkv||||--start 0.1|8 frames.*1 audio and 1 subtitle copied|240,180,16:11,yuv420p,bt709,bt709
rich.mkv||||--frames 10|10 frames.*1 audio and 1 subtitle copied|240,180,16:11,yuv420p,bt709,bt709
odd.mkv|s=66x50:d=0.1|X264|||66x50 to 98x75|98,75,1:1,yuv420p,smpte170m,smpte170m
fields.mpg|s=352x288:r=50:d=0.3,tinterlace=interleave_top|-c:v mpeg2video -q:v 3 -flags +ildct+ilme|bwdif=send_frame||note: interlaced|528,432,1:1,yuv420p,bt470bg,bt470bg
END

near() { awk "BEGIN { exit !($1 - $2 < $3 && $2 - $1 < $3) }" || fail "$4: $1 instead of $2"; }
expect 0 . enhance -y rich.mkv film.mkv
[ "$(sound film.mkv)" = "$(sound rich.mkv)" ] || fail 'sound is another'
times() { told "$1" "$2" packet=pts_time | sort -n | xargs; }
for stream in v:0 a:0 s:0; do [ "$(times film.mkv $stream)" = "$(times rich.mkv $stream)" ] || fail "times of $stream"; done
near "$(ff -i film.mkv -vf signalstats,metadata=print:file=- -f null - | sed -n 's/.*YAVG=//p;T;q')" 118 20 'mean luma'
ff -i rich.mkv -c copy -metadata:s:v:0 rotate=90 -map 0:v -map 0:a turned.mp4
expect 0 '120x160 to 180x240' enhance turned.mp4 upright.mp4
expect 0 'subtitle stream 2 .* is left out: mp4' enhance rich.mkv tags.mp4
[ "$(told tags.mp4 v:0 stream=codec_name,color_space,color_range)" = h264,tv,bt709 ] || fail 'tags in mp4'
expect 0 . enhance door.y4m written.mkv

# Beside clarivex.exe it is found too, and files of any name come and go.
mkdir beside 'a föld 中' && cp "$clarivex" "$bridge" beside && cp rich.mkv "a föld 中/-it's 100% & ^x中.mkv"
unset WINEPATH
clarivex=$PWD/beside/clarivex.exe
(cd 'a föld 中' && expect 0 . enhance --into ./out -- "-it's 100% & ^x中.mkv" && [ "$failures" = 0 ]) || fail 'names'
[ "$(samples "a föld 中/out/-it's 100% & ^x中-enhanced.mkv")" = "$(samples film.mkv)" ] || fail 'a film of a long name'

# What cannot be done leaves nothing behind, and tells what ffmpeg.exe said.
while IFS='|' read -r pattern arguments; do
    expect 1 "$pattern" enhance $arguments
done <<'END'
sound.wav: holds no video|sound.wav refused.mkv
junk.mkv: is no video that can be read; ffmpeg.exe failed: .*Invalid data|junk.mkv refused.mkv
mine.mkv: is there already; --overwrite|rich.mkv mine.mkv
ffmpeg.exe has no video encoder nosuch|--encoder nosuch rich.mkv refused.mkv
refused.mp4: ffmpeg.exe failed: .*ffv1|--encoder ffv1 rich.mkv refused.mp4
refused.mkv: ffmpeg.exe failed: .*nosuch|--encoder-options nosuch=1 rich.mkv refused.mkv
refused.xyz: its name tells of no kind of film|rich.mkv refused.xyz
before the time to start at|--start 9 rich.mkv refused.mkv
END
[ "$(cat mine.mkv)" = mine ] && [ -z "$(ls | grep -E 'refused|part$')" ] || fail "left behind: $(ls)"

[ "$failures" = 0 ] || { echo "$failures checks failed" && exit 1; }
