#!/usr/bin/env bash
# Sends films that ffmpeg makes here through the clarivex program, and reads with ffprobe and ffmpeg what comes out:
# film_test.sh PATH_OF_CLARIVEX
set -u
clarivex=$(realpath "$1")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder" || exit 1

failures=0
fail() {
    printf 'FAILED: %s\n' "$*"
    [ -s errors ] && sed 's/^/    /' errors
    failures=$((failures + 1))
}
run() { timeout 120 "$clarivex" "$@"; }
ff() { timeout 60 ffmpeg -hide_banner -loglevel error -nostdin -y "$@"; }

# expect CODE PATTERN ARGUMENT…: the exit code, words on standard error, and there no line of any library's own. No
# file grows beyond $limit KiB.
expect() {
    local code=$1 pattern=$2
    shift 2
    (ulimit -f "${limit:-unlimited}" && run "$@" </dev/null >output 2>errors)
    local got=$?
    [ "$got" = "$code" ] || fail "exit code $got instead of $code: $*"
    grep -Eq -- "$pattern" errors || fail "standard error does not say '$pattern': $*"
    ! grep -qv '^clarivex: ' errors || fail "a line of another than clarivex: $*"
}
absent() { for file in "$@"; do [ ! -e "$file" ] || fail "$file is there"; done; }

# What ffprobe tells of a file's streams, as values with commas between them: told FILE STREAMS ENTRIES.
told() { ffprobe -v error -select_streams "$2" -show_entries "$3" -of csv=p=0 "$1" | sed 's/,*$//; /^$/d'; }
times() { told "$1" v:0 packet=pts_time | sort -n; }
count() { told "$1" v:0 packet=pts_time | wc -l; }
streams() { ff -i "$1" -map "0:$2" -c copy -f streamhash - | cut -d = -f 2; }  # of packets as they are stored
samples() { ff -i "$1" "${@:2}" -map 0:v:0 -fps_mode passthrough -f rawvideo - | md5sum; }
same() { [ "$(samples "$1")" = "$(samples "$2")" ] || fail "$1 and $2 hold other pictures${3:+: $3}"; }

# The mean luma of the first frame, or another of signalstats' figures: level FILE FILTERS FIGURE.
level() {
    ff -i "$1" -vf "${2:-null},signalstats,metadata=print:file=-" -f null - |
        sed -n "s/.*\.${3:-YAVG}=//p" | head -n 1
}
near() { awk "BEGIN { exit !($1 - $2 < $3 && $2 - $1 < $3) }" || fail "$4: $1 instead of $2"; }

# The exact door: the same film as a Y4M stream, from ffmpeg through clarivex. door FILE OPTION…
door() {
    ff -i "$1" -map 0:v:0 -fps_mode passthrough -pix_fmt yuv420p -f yuv4mpegpipe - |
        run enhance --quiet "${@:2}" - door.y4m
}

# What each kind of film comes to. A line: the input, its pictures, how ffmpeg writes them, the options, the output, what is
# said, and what ffprobe tells of the output: codec, size, sample aspect, samples, matrix and primaries, frames a second.
# Pictures that begin with a size are ffmpeg's test picture, which moves.
x264='-c:v libx264 -preset ultrafast -pix_fmt yuv420p'
bt709='-colorspace bt709 -color_primaries bt709 -color_trc bt709 -color_range tv'
fields=codec_name,width,height,sample_aspect_ratio,pix_fmt,color_range,color_space,color_primaries,r_frame_rate
while IFS='|' read -r name source coding options output said expected; do
    coding=${coding/X264/$x264}
    [[ $source = [0-9]* ]] && source=testsrc2=s=$source
    ff -f lavfi -i "$source" ${coding/BT709/$bt709} "$name" || fail "ffmpeg makes no $name"
    expect 0 "$said" enhance $options "$name" "$output"
    read -r codec size aspect sampling matrix rate <<<"$expected"
    got=$(told "$output" v:0 stream=$fields)
    grep -Exq "$codec,${size/x/,},$aspect,$sampling,tv,$matrix,$matrix,$rate" <<<"$got" || fail "$output: $got"
    [ "$(times "$name")" = "$(times "$output")" ] || fail "times in $output of $name"
    absent "$output.part"
done <<'END'
sd.mkv|160x120:d=0.4|X264||sd_out.mkv|10 frames, 160x120 to 240x180|h264 240x180 1:1 yuv420p smpte170m 25/1
sd.mkv|160x120:d=0.4|X264|--lossless|sd_ffv1.mkv|10 frames|ffv1 240x180 1:1 yuv420p smpte170m 25/1
pal.mkv|64x576:d=0.1|X264||pal_out.mkv|.|h264 96x864 1:1 yuv420p bt470bg 25/1
cif.mkv|352x288:d=0.1|X264|--encoder ffv1|cif_out.mkv|.|ffv1 528x432 1:1 yuv420p bt470bg 25/1
ntsc.mkv|64x480:r=30000/1001:d=0.1|X264||ntsc_out.mkv|.|h264 96x720 1:1 yuv420p smpte170m 30000/1001
over.mkv|64x580:d=0.1|X264||over_out.mkv|.|h264 96x870 1:1 yuv420p bt709 25/1
tags.mp4|160x120:d=0.4|X264 BT709||tags_out.mp4|.|h264 240x180 1:1 yuv420p bt709 25/1
wide.mkv|160x120:d=0.1,setsar=16/11|X264||wide_out.mkv|.|h264 240x180 16:11 yuv420p smpte170m 25/1
odd.mkv|66x50:d=0.1|X264||odd_out.mp4|66x50 to 98x7[45]|h264 98x74 1:1 yuv420p smpte170m 25/1
portrait.mp4|720x1280:d=0.08|X264||portrait_out.mp4|720x1280 to 1080x1920|h264 1080x1920 1:1 yuv420p bt709 25/1
hd.mp4|color=0xC0A0B0:s=1920x1080:d=0.08|X264||hd_out.mp4|1920x1080 to 2880x1620|h264 2880x1620 1:1 yuv420p bt709 25/1
hd.mp4|1920x1080:d=0.08|X264|--mode never|hd_never.mp4|1920x1080 to 1920x1080|h264 1920x1080 1:1 yuv420p bt709 25/1
deep.webm|160x120:d=0.2|-c:v libvpx-vp9 -pix_fmt yuv420p10 -deadline realtime -cpu-used 8||deep_out.webm|note: .*10-bit|vp9 240x180 1:1 yuv420p smpte170m 25/1
half.mkv|160x120:d=0.1|X264 -pix_fmt yuv422p||half_out.mkv|note: .*4:2:2|h264 240x180 1:1 yuv420p smpte170m 25/1
yuy2.mkv|160x120:d=0.1|X264|--format yuy2|yuy2_out.mkv|.|h264 240x180 1:1 yuv422p smpte170m 25/1
rgb.mkv|color=red:s=160x120:d=0.1|-c:v ffv1 -pix_fmt bgr0|--lighting off --lossless|rgb_out.mkv|note: .*RGB|ffv1 240x180 1:1 yuv420p smpte170m 25/1
rgb709.mkv|color=red:s=96x600:d=0.1|-c:v ffv1 -pix_fmt bgr0|--lighting off --lossless|rgb709_out.mkv|note: .*RGB|ffv1 144x900 1:1 yuv420p bt709 25/1
full.mkv|color=white:s=160x120:d=0.1|X264 -pix_fmt yuvj420p|--lighting off --lossless|full_out.mkv|note: .*range|ffv1 240x180 1:1 yuv420p smpte170m 25/1
varying.mkv|160x120:d=1,select='not(mod(n,3))+not(mod(n,7))'|X264 -fps_mode vfr||varying_out.mkv|11 frames|h264 240x180 1:1 yuv420p smpte170m .*
END
near "$(level rgb_out.mkv)" 81 3 'luma of red in BT.601'
near "$(level rgb709_out.mkv)" 63 3 'luma of red in BT.709'
near "$(level full_out.mkv)" 235 3 'luma of full-range white'
[ "$(level hd_out.mp4 crop=64:64:iw-64:ih-64 YMIN | cut -d . -f 1)" -gt 100 ] || fail 'a black corner'

# For 8-bit progressive film the pictures are those of the exact door, turned upright first where the film says so.
ff -i sd.mkv -c copy -metadata:s:v:0 rotate=90 turned.mp4
for name in sd.mkv pal.mkv hd.mp4 portrait.mp4 turned.mp4; do
    run enhance --quiet --lossless "$name" exact.mkv --overwrite 2>errors || fail "lossless: $name"
    door "$name" && same exact.mkv door.y4m "$name"
done
expect 0 '120x160 to 180x240' enhance turned.mp4 upright.mp4
[ "$(told upright.mp4 v:0 stream=width,height:stream_side_data=rotation | xargs)" = 180,240 ] || fail 'turned twice'

# The plug-in's own ways: its multiple of 8, and its large pictures, not enlarged but at the upper left of a black one.
door odd.mkv --padding keep
while read -r padding pattern; do
    run enhance --quiet --lossless --padding $padding odd.mkv $padding.mkv
    size=$(told $padding.mkv v:0 stream=width,height)
    [[ $size = $pattern ]] || fail "size with --padding $padding: $size"
    part=crop=${size/,/:}:0:0:exact=1
    [ "$(samples $padding.mkv)" = "$(samples door.y4m -vf $part)" ] || fail "--padding $padding"
done <<'END'
keep 104,7[45]
crop 98,7[45]
END
expect 0 'warning: .*upper left' enhance --quiet --limits plugin --lossless hd.mp4 canvas.mkv
door hd.mp4 --limits plugin 2>errors && same canvas.mkv door.y4m --limits
near "$(level canvas.mkv crop=1920:1080:0:0)" "$(level hd.mp4)" 20 'the picture in the corner'
near "$(level canvas.mkv crop=928:1620:1952:0)" 16 1 'black at its right'
near "$(level canvas.mkv crop=2880:528:0:1092)" 16 1 'black below it'

# Interlaced film: no combs are left, unless that was asked for; size, rate and count stay.
ff -f lavfi -i testsrc2=s=352x288:r=50:d=0.6,scroll=h=0.02,tinterlace=interleave_top \
    -c:v mpeg2video -q:v 3 -flags +ildct+ilme fields.mpg
combed() {  # how many frames idet holds to be interlaced, by their upper and their lower field first
    ffmpeg -hide_banner -nostdin -i "$1" -vf idet -f null - 2>&1 |
        sed -n 's/.*Multi.*TFF: *\([0-9]*\) BFF: *\([0-9]*\) .*/\1 \2/p'
}
expect 0 'note: .*interlaced' enhance --mode never fields.mpg smooth.mkv
expect 0 '.' enhance --mode never --deinterlace off fields.mpg combs.mkv
[ "$(combed smooth.mkv)" = '0 0' ] || fail "combs after deinterlacing: $(combed smooth.mkv)"
[ "$(combed combs.mkv)" != '0 0' ] || fail 'deinterlaced though it is off'
for file in smooth.mkv combs.mkv; do
    got="$(told $file v:0 stream=width,height,r_frame_rate) $(count $file)"
    [ "$got" = '352,288,25/1 15' ] || fail "interlaced film in $file: $got"
done

# Sound, subtitles, chapters, metadata and attachments are carried over bit by bit where the container takes them.
printf '1\n00:00:00,100 --> 00:00:00,900\nHello\n' >words.srt
chapter='[CHAPTER]\nTIMEBASE=1/1000\nSTART=%s\nEND=%s\ntitle=%s\n'
printf ";FFMETADATA1\ntitle=A film\n$chapter$chapter" 0 500 One 500 1000 Two >chapters
head -c 5000 "$clarivex" >some.ttf
ff -f lavfi -i testsrc2=s=160x120:d=1 -f lavfi -i sine=d=1 -i words.srt -i chapters -map 0 -map 1 -map 2 \
    -map_metadata 3 $x264 -c:s subrip -c:a aac -ac 1 -metadata:s:a language=deu \
    -attach some.ttf -metadata:s:t mimetype=font/ttf rich.mkv
ff -i rich.mkv -map 0:v -map 0:a -map 0:s -c copy -c:s mov_text rich.mp4
chapters() { ffprobe -v error -show_entries chapter=start_time,end_time:chapter_tags=title -of csv=p=0 "$1"; }
title() { ffprobe -v error -show_entries format_tags=title -of csv=p=0 "$1"; }
kept() { [ "$("$1" "rich.$from" "${@:2}")" = "$("$1" rich_out.$into "${@:2}")" ] || fail "$from to $into: $*"; }
while read -r from into kinds said; do
    expect 0 "$said" enhance -y rich.$from rich_out.$into
    for kind in ${kinds/,/ }; do kept streams $kind; done
    kept chapters && kept title && kept times
    kept told a stream=start_time && kept told a stream_tags=language
done <<'END'
mp4 mp4 a:0,s:0 25 frames
mkv mp4 a:0 note: .*subrip.*left out
mkv mkv a:0,s:0 25 frames
END
[ "$(chapters rich.mkv | wc -l) $(title rich.mkv)" = '2 A film' ] || fail 'the film to copy has too little in it'
ff -dump_attachment:t:0 back.ttf -i rich_out.mkv -t 0 -f null - && cmp -s some.ttf back.ttf || fail 'another attachment'

# A part of a film. The sound tells its own place in the film: a rising voltage.
ff -f lavfi -i testsrc2=s=160x120:d=2 -f lavfi -i aevalsrc=t/4:d=2 $x264 -g 10 -c:a pcm_s16le long.mkv
expect 0 '20 frames' enhance --start 0.4 --duration 0.8 --lossless long.mkv part.mkv
ff -i long.mkv -an -vf trim=start_frame=10:end_frame=30,setpts=PTS-STARTPTS -c:v ffv1 trimmed.mkv
door trimmed.mkv && same part.mkv door.y4m '--start and --duration'
[ "$(times part.mkv | sed -n '1p;$p' | xargs)" = '0.000000 0.760000' ] || fail 'times of a part'
first=$(ff -i part.mkv -map 0:a -frames:a 1 -f s16le - | od -An -td2 -N2)
start=$(told part.mkv a:0 packet=pts_time | head -n 1)
near "$first / 32768 * 4" "($start + 0.4)" 0.03 'place of the sound'
near "$(told part.mkv a:0 packet=pts_time | tail -n 1)" 0.8 0.06 'end of the sound'
expect 0 . enhance --start 0.4 --duration 0.3 rich.mkv words.mkv
[ "$(told words.mkv s:0 packet=pts_time,duration_time)" = '0.000000,0.300000' ] || fail 'a subtitle over both ends of a part'
expect 0 '7 frames' enhance --frames 7 long.mkv seven.mkv
[ "$(count seven.mkv)" = 7 ] || fail '--frames'

# What cannot be enhanced is refused in words, and leaves no output.
ff -f lavfi -i testsrc2=s=160x120:d=0.2 $x264 -color_trc smpte2084 -color_primaries bt2020 -colorspace bt2020nc hdr.mkv
ff -f lavfi -i sine=d=1 sound.wav
ff -f lavfi -i testsrc2=s=64x64 -frames:v 1 cover.png
ff -i sound.wav -i cover.png -map 0 -map 1 -c:v copy -disposition:v attached_pic cover.m4a
ff -f lavfi -i color=s=16x16:d=0.1,format=gray,crop=1:1 -c:v ffv1 tiny.mkv
ff -f lavfi -i color=s=8200x16:r=25:d=0.04 -c:v ffv1 long_row.mkv
ff -f lavfi -i color=s=16x16 -frames:v 1 vast.png
printf '\0\0\116\40\0\0\116\40' | dd of=vast.png bs=1 seek=16 conv=notrunc status=none  # the header says 20000x20000
: >empty.mkv && echo mine >mine.mkv
while IFS='|' read -r code pattern arguments; do
    expect "$code" "$pattern" enhance $arguments
done <<'END'
1|hdr.mkv: .*high dynamic range.*ffmpeg .*tonemap|hdr.mkv refused.mkv
1|sound.wav: .*no video|sound.wav refused.mkv
1|cover.m4a: .*no video.*cover|cover.m4a refused.mkv
1|tiny.mkv: .*1x1|tiny.mkv refused.mkv
1|long_row.mkv: .*8200x16.*8192|long_row.mkv refused.mkv
1|vast.png: |vast.png refused.mkv
1|empty.mkv: |empty.mkv refused.mkv
1|missing.mkv: |missing.mkv refused.mkv
1|some.ttf: |some.ttf refused.mkv
1|mine.mkv: .*--overwrite|sd.mkv mine.mkv
1|sd.mkv: is the input file too|sd.mkv ./sd.mkv --overwrite
1|refused.mp4: .*ffv1|--encoder ffv1 sd.mkv refused.mp4
1|nosuch.*libx264|--encoder nosuch sd.mkv refused.mkv
1|nosuch|--encoder-options nosuch=1 sd.mkv refused.mkv
1|no/refused.mkv: |sd.mkv no/refused.mkv
1|/proc/refused.mkv: |sd.mkv /proc/refused.mkv
1|sd.mkv/refused.mkv: |sd.mkv sd.mkv/refused.mkv
END
absent refused.* && [ "$(cat mine.mkv)" = mine ] || fail 'an existing output was written over'
expect 1 'high dynamic range' enhance hdr.mkv refused.mkv
bash -c "$(grep -o 'ffmpeg .*' errors)" </dev/null >output 2>&1 || fail "the command named: $(tail -n 3 output)"
limit=20 expect 1 'limited.mkv: ' enhance rich.mkv limited.mkv
absent limited.mkv
cp mine.mkv replaced.mkv && run enhance -y --quiet sd.mkv replaced.mkv && same replaced.mkv sd_out.mkv '-y'

# Damage in the middle is told with its place and counted; the frames around it are kept.
read -r size place < <(told rich.mkv v:0 packet=size,pos | sed -n 12p | tr , ' ')
cp rich.mkv damaged.mkv
head -c 60 /dev/zero | tr '\0' '\377' | dd of=damaged.mkv bs=1 seek=$((place + 7)) conv=notrunc status=none
expect 0 'note: at 0:00\.[0-9]{3}: ' enhance damaged.mkv mended.mkv
grep -q '^clarivex: .*damaged.mkv: .*1 .*damaged' errors || fail 'damage is not counted'
[ "$(count mended.mkv)" -ge 24 ] || fail 'frames around the damage are lost'
expect 1 'damaged.mkv: .*--strict' enhance --strict --overwrite damaged.mkv mended.mkv

# Cut anywhere, a film comes out whole up to there, or not at all.
ff -i rich.mkv -map 0:v -map 0:a -c copy -t 0.4 rich.ts
ff -i rich.mkv -map 0:v -map 0:a -c copy -t 0.4 -movflags +faststart fast.mp4
for name in rich.mkv rich.ts fast.mp4; do
    bytes=$(wc -c <$name)
    for ((cut = bytes / 90; cut < bytes; cut += bytes / 9)); do
        head -c $cut $name >cut.${name#*.} && rm -f cut_out.mkv*
        run enhance --quiet cut.${name#*.} cut_out.mkv 2>errors
        case $? in
            0) [ -z "$(ff -i cut_out.mkv -map 0:v -f null - 2>&1)" ] || fail "a broken output of $name cut at $cut" ;;
            1) absent cut_out.mkv ;;
            *) fail "$name cut at $cut" ;;
        esac
    done
done

# Another size in the middle, no time stamps, and time that jumps back: one film of one size whose time goes on.
ff -i sd.mkv -c copy small.h264 && ff -f lavfi -i testsrc2=s=128x96:r=25:d=0.2 $x264 other.h264
cat small.h264 other.h264 >sizes.h264 && cat rich.ts rich.ts >back.ts
while read -r name frames pattern; do
    expect 0 "${pattern//_/ }" enhance $name even.mkv --overwrite
    got="$(count even.mkv) $(told even.mkv v:0 stream=width,height)"
    [ "$got" = "$frames 240,180" ] || fail "pictures of $name: $got"
    [ "$(times even.mkv | uniq | wc -l)" = "$frames" ] || fail "frames of $name at one time"
done <<END
small.h264 10 10_frames
sizes.h264 15 note:_.*128x96.*160x120
back.ts $((2 * $(count rich.ts))) frames
END

# Joined recordings keep their sound in step, a cover stays one, sound that outlasts the pictures is no damage, and of two
# runs on one output one begins.
ff -i rich.mkv -map 0:v -map 0:a -c copy whole.ts && cat whole.ts whole.ts >joined.ts
expect 0 'time stamps begin anew' enhance joined.ts joined.mkv
near "$(told joined.mkv a:0 packet=pts_time | sort -n | tail -n 1)" 2 0.1 'the last sound of joined recordings'
ff -i sd.mkv -frames:v 1 cover.png && ff -i sd.mkv -i cover.png -map 0 -map 1 -c copy -disposition:v:1 attached_pic cover.mp4
expect 0 . enhance cover.mp4 cover.mkv && expect 0 . enhance cover.mp4 cover_out.mp4
for file in cover.mkv cover_out.mp4; do
    [ "$(told $file v:1 stream_disposition=attached_pic)" = 1 ] || fail "no cover in $file"
done
ff -i sd.mkv -f lavfi -i sine=d=4 -map 0:v -map 1 -c:v copy -c:a aac outlasts.mkv
expect 0 . enhance --strict outlasts.mkv outlasts_out.mkv
for n in 1 2 3; do run enhance --quiet hd_never.mp4 raced.mkv 2>>raced & done
wait
[ "$(grep -c 'is in its way\|is there already' raced)" = 2 ] || fail 'three runs on one output'

# A signal ends the film behind the frame in work: it can be played, but does not bear the name of a whole one.
ff -stream_loop 400 -i hd_never.mp4 -c copy -an endless.mkv
while read -r signal code; do
    rm -f endless_out.mkv*
    (set -m; exec "$clarivex" enhance --encoder ffv1 endless.mkv endless_out.mkv 2>errors) &
    for ((i = 0; i < 600; ++i)); do
        [ "$(stat -c %s endless_out.mkv.part 2>/dev/null || echo 0)" -lt 500000 ] || break
        sleep 0.1
    done
    absent endless_out.mkv
    kill -$signal $! && wait $!
    got=$?
    [ $got = $code ] || fail "exit code $got after SIG$signal"
    absent endless_out.mkv
    [ -z "$(ff -i endless_out.mkv.part -f null - 2>&1)" ] && [ "$(count endless_out.mkv.part)" -gt 0 ] ||
        fail "no film is left after SIG$signal"
done <<'END'
INT 130
TERM 143
END

# Many films: one that fails does not stop the others.
mkdir many && expect 1 '1 of 3 failed: .*some.ttf' enhance sd.mkv some.ttf tags.mp4 --into many --suffix -new
[ "$(cd many && echo *)" = 'sd-new.mkv tags-new.mp4' ] || fail "outputs of many: $(cd many && echo *)"
expect 0 . enhance --json -y sd.mkv sd_out.mkv
grep -Exq '\{.*"frames": 10, .*\}' output || fail "--json: $(cat output)"
expect 0 . enhance deep.webm deep_out.mkv
run enhance --quiet -y deep.webm deep_out.mkv 2>errors && [ ! -s errors ] || fail '--quiet tells notes'

# A comparison shows the moment's frame as ffmpeg enlarges it and as enhance gives it after the second before. What differs
# of a part of two pictures, in green: apart PART_OF_A A PART_OF_B B.
apart() {
    ff -i "$2" -i "$4" -filter_complex "[0]$1,setpts=0,format=gbrp[a];[1]$3,setpts=0,format=gbrp[b];
        [a][b]blend=all_mode=difference,extractplanes=g,signalstats,metadata=print:file=-" -frames:v 1 -f null - |
        sed -n 's/.*\.YAVG=//p' | head -n 1
}
ff -f lavfi -i testsrc2=s=320x240:d=2.4 $x264 $bt709 view.mkv
run enhance --quiet --start 0.63 --lossless view.mkv seen.mkv  # from the frame at 0.64 on
expect 0 'frame at 1.600 s, 320x240 and 480x360' compare --at 1.63 view.mkv side.png
cut=crop=480:320:0:0
near "$(apart $cut side.png "select=eq(n\,40),scale=480:360:flags=bicubic,$cut" view.mkv)" 0 0.1 'the plain half'
near "$(apart crop=480:320:480:0 side.png "select=eq(n\,24),$cut" seen.mkv)" 0 0.1 'the enhanced half'
expect 0 . compare --at 1.63 --layout split view.mkv split.png
for columns in 0:0 242:722; do  # of the halves, and where they stand in the pictures beside each other
    part=crop=238:320:${columns#*:}:0
    near "$(apart crop=238:320:${columns%:*}:0 split.png $part side.png)" 0 0.1 "split at $columns"
done
expect 0 . compare sd.mkv film.png && ff -i sd.mkv -pix_fmt yuv420p sd.y4m && expect 0 . compare sd.y4m y4m.png
cmp film.png y4m.png || fail 'films and Y4M compare otherwise'
while IFS='|' read -r code pattern size options; do
    expect $code "$pattern" compare $options view.mkv view.png
    [ -z "$size" ] || [ "$(told view.png v:0 stream=width,height)" = $size ] || fail "size of the comparison $options"
done <<'END'
0|frame at 1.200 s|960,360|
1|view.png: .*--overwrite||
0|.|480,360|--layout split -y
0|.|600,240|--crop 100x80+380+280 --zoom 3 -y
0|frame at 0.000 s|640,240|--mode never --at 0 -y
1|101x80\+380\+0.*480x360||--crop 101x80+380+0 -y
1|view.mkv: .*ends at 2.400 s||--at 2.5 -y
END

[ "$failures" = 0 ] || { echo "$failures checks failed" && exit 1; }
