#!/usr/bin/env bash
# Runs the clarivex program as a person or a script would and checks its exit codes, its error lines and that what it
# wrote before an error is whole: cli_test.sh PATH_OF_CLARIVEX
set -u
clarivex=$1
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder" || exit 1

failures=0
fail() {
    printf 'FAILED: %s\n' "$*"
    [ -s errors ] && sed 's/^/    /' errors
    failures=$((failures + 1))
}
run() { timeout 60 "$clarivex" "$@"; }

# expect CODE PATTERN ARGUMENT…: the exit code, and exactly one line on standard error that matches the pattern. Standard
# input is the file $from, standard output goes to the end of the file $into, and no file grows beyond $limit KiB.
expect() {
    local code=$1 pattern=$2
    shift 2
    [ -n "${into:-}" ] || : >output
    (ulimit -f "${limit:-unlimited}" && run "$@" <"${from:-/dev/null}" >>"${into:-output}" 2>errors)
    local got=$?
    [ "$got" = "$code" ] || fail "exit code $got instead of $code: $*"
    [ "$(wc -l <errors)" = 1 ] || fail "one line on standard error was expected: $*"
    grep -Eq -- "$pattern" errors || fail "standard error does not say '$pattern': $*"
}

# begins COUNT FILE OTHER: both begin with the same bytes.
begins() { cmp -s <(head -c "$1" "$2") <(head -c "$1" "$3"); }

# frames COUNT: so many frames of 64x48 with something to see in them.
frames() {
    for ((n = 0; n < $1; ++n)); do
        printf 'FRAME\n'
        head -c 4608 "$clarivex"
    done
}
header='YUV4MPEG2 W64 H48 F25:1 Ip A1:1 C420jpeg XCOLORRANGE=LIMITED'
enlarged_bytes=$((6 + 96 * 72 * 3 / 2))  # a frame of 96x72 with its FRAME line
{ echo "$header" && frames 5; } >clip.y4m
{ echo "$header" && frames 200; } >long.y4m
echo "$header" >no_frames.y4m

# Wrong use is code 2, streams that cannot be enhanced are code 1; neither makes an output file.
expect 2 'a command is missing.*--help'
expect 2 '--plugin works in the Windows program only' enhance --plugin some.dll clip.y4m out.y4m
expect 1 'missing.y4m: cannot be opened for reading' enhance missing.y4m out.y4m
expect 1 ': cannot be opened for reading: it is a folder' enhance . out.y4m
expect 1 'standard input: is empty, .* the program before it in the pipe may have failed' enhance - out.y4m
yes 'No video, but a text.' | head -n 200 >text
from=text expect 1 'standard input: is no video that can be read' enhance - out.y4m
[ ! -e out.y4m ] || fail 'a run in vain left an output file'

# A good run keeps the tags and tells what it did.
expect 0 '5 frames, 64x48 to 96x72, [0-9.]+ frames/s' enhance clip.y4m good.y4m
first=$(head -n 1 good.y4m)
first_bytes=$((${#first} + 1))
[ "$first" = "${header/W64 H48/W96 H72}" ] || fail "header of the output: $first"
[ "$(wc -c <good.y4m)" = $((first_bytes + 5 * enlarged_bytes)) ] || fail 'size of the output'
run enhance --quiet - - <clip.y4m >piped.y4m 2>errors || fail 'a run in a pipe'
cmp -s good.y4m piped.y4m || fail 'pipes carry other bytes than files'
[ ! -s errors ] || fail '--quiet spoke'
expect 0 '^clarivex: timing: 2 frames in ProcessOutput, total .* mean .* minimum .* median' \
    enhance --quiet --timing --frames 2 clip.y4m two.y4m
begins "$(wc -c <two.y4m)" good.y4m two.y4m || fail '--frames gives other frames'
expect 0 '64x48 to 64x48' enhance --mode never --format yuy2 clip.y4m packed.y4m
head -n 1 packed.y4m | grep -q 'W64 H48 .*C422' || fail 'yuy2 is not written as 4:2:2'

# Outputs that cannot be written, whatever the reason and however late it shows: code 1, and the frames before it whole.
expect 1 'no/out.y4m: cannot be opened for writing' enhance clip.y4m no/out.y4m
for arguments in 'enhance clip.y4m /dev/full' 'enhance no_frames.y4m /dev/full' 'caption /dev/full'; do
    expect 1 '/dev/full: cannot be written any further' $arguments
done
for arguments in 'enhance clip.y4m -' 'enhance no_frames.y4m -' 'caption -' info --help; do
    into=/dev/full expect 1 'standard output: cannot be written any further' $arguments
done
limit=20 expect 1 'limited.y4m: cannot be written any further.* 1 whole frame was written' enhance clip.y4m limited.y4m
begins $((first_bytes + enlarged_bytes)) good.y4m limited.y4m || fail 'the whole frame before a limit'

# A closed pipe ends the run with one line; it must neither hang nor die of a signal.
run enhance long.y4m - 2>errors | head -c 10 >/dev/null
[ "${PIPESTATUS[0]}" = 1 ] || fail 'exit code after a closed pipe'
[ "$(grep -c '' errors) $(grep -c 'standard output: cannot be written' errors)" = '1 1' ] || fail 'words of a closed pipe'

# Pipes that were opened not to wait are waited for.
not_waiting='fcntl $_, F_SETFL, O_NONBLOCK | fcntl $_, F_GETFL, 0 for *STDIN, *STDOUT; exec @ARGV'
run enhance --quiet long.y4m long_out.y4m
{ sleep 0.2 && cat long.y4m; } | timeout 60 perl -MFcntl -e "$not_waiting" "$clarivex" enhance --quiet - - 2>errors |
    { sleep 0.2 && cat; } >piped.y4m
[ "${PIPESTATUS[1]}" = 0 ] && cmp -s long_out.y4m piped.y4m || fail 'pipes that do not wait'

# Without standard streams no file takes their place, and nothing is lost in silence.
echo 'YUV4MPEG2 W31 H16' | run enhance - closed.y4m 2>&-
[ "$(cat closed.y4m)" = 'YUV4MPEG2 W31 H16' ] || fail 'notes went into the video'
run enhance clip.y4m - >&- 2>errors && fail 'frames went nowhere'

# The input is never written over, by whatever name.
cp clip.y4m same.y4m
expect 1 'same.y4m: is the input file too' enhance same.y4m ./same.y4m
from=same.y4m expect 1 'same.y4m: is the input file too' enhance - same.y4m
into=same.y4m expect 1 'standard output: is the input file too' enhance --frames 2 same.y4m -
from=same.y4m into=same.y4m expect 1 'standard output: is the input file too' enhance --frames 2 - -
cmp -s clip.y4m same.y4m || fail 'the input was harmed'

# One frame on both sides of each limit and of odd sizes: the size that comes out, and what is told of what is not done.
# Enlarged are pairs of columns and whole pairs of rows; of what fills them up to a multiple of 8 nothing is written.
while read -r width height options pattern; do
    { echo "YUV4MPEG2 W$width H$height F25:1" && echo FRAME &&
        yes abc | head -c $((width * height + (width + 1) / 2 * ((height + 1) / 2) * 2)); } >limits.y4m
    case $options in
        *keep*) size=$((((width + 1) / 2 * 3 + 7) / 8 * 8))x$((height / 2 * 3)) ;;
        --mode=always*) size=$((width * 3 / 4 * 2))x$((height / 2 * 3)) ;;
        *) size=${width}x$height ;;
    esac
    run enhance ${options//,/ } limits.y4m limits_out.y4m 2>errors || fail "${width}x$height $options"
    grep -q "1 frame, ${width}x$height to $size," errors || fail "${width}x$height $options does not come to $size"
    [ "$(grep -c '\(note\|warning\):' errors)" = "$([ "$pattern" = none ]; echo $?)" ] || fail "count of notes: ${width}x$height $options"
    case $options:$pattern in  # below the limits they change nothing
        *limits* | *hd*) ;;
        --padding=crop:*) cmp -s limits.y4m limits_out.y4m || fail 'a narrow picture was changed' ;;
        *) [ "$width" -ge 1440 ] || [ "$height" -ge 1022 ] ||
            { run enhance --quiet --limits plugin ${options//,/ } limits.y4m standing.y4m && cmp -s limits_out.y4m standing.y4m; } ||
            fail "${width}x$height $options is another with the limits standing" ;;
    esac
    [ "$pattern" = none ] || grep -Eq "$pattern" errors || fail "not told '$pattern': ${width}x$height $options"
done <<'END'
30 16 --padding=crop note: pictures less than 32 wide .* pass unchanged
31 16 --mode=always,--limits=plugin warning: pictures less than 32 wide .* stand at the upper left
32 16 --mode=always none
33 18 --mode=always,--format=iyuv none
34 17 --mode=always,--format=yuy2 none
33 18 --mode=always,--padding=keep,--format=iyuv none
34 17 --mode=always,--padding=keep,--format=yuy2 none
65 49 --mode=never none
65 49 --mode=never,--format=yuy2 none
1440 859 --mode=always,--limits=plugin none
1440 860 --mode=always none
1440 860 --mode=always,--limits=plugin warning: pictures this large
1440 860 --mode=never,--limits=plugin warning: pictures this large
2047 16 --mode=always,--limits=plugin none
2048 16 --mode=always none
2048 16 --mode=always,--limits=plugin warning: pictures this large
64 1021 --mode=always,--limits=plugin none
64 1022 --mode=always none
64 1022 --mode=always,--limits=plugin warning: pictures this large
1024 575 --mode=always,--hd=bypass none
1440 860 --hd=bypass note: high definition is bypassed
1024 576 --hd=bypass note: high definition is bypassed
END
cmp -s limits.y4m limits_out.y4m || fail 'a bypassed video was changed'

# Progress is for terminals: shown from the first frame on, wiped behind the last, and never with --quiet.
terminal() { script -qec "timeout 60 '$clarivex' $*" typescript </dev/null >/dev/null; }
terminal enhance clip.y4m out.y4m
grep -aq $'^\r1 of 5 frames, ' typescript || fail 'no progress on a terminal'
grep -aq $'\r *\rclarivex: 5 frames' typescript || fail 'the progress stays on the terminal'
terminal enhance --quiet clip.y4m out.y4m
! grep -aq frame typescript || fail '--quiet speaks to a terminal'

# The caption, off unless asked for, is in the same frames over a film and alone: from the first to the 275th.
size=28800  # of a frame of 160x120
{ echo 'YUV4MPEG2 W160 H120' && for n in {1..276}; do printf 'FRAME\n' && head -c $size /dev/zero | tr '\0' '\200'; done; } >grey.y4m
run enhance --quiet --caption on --mode never grey.y4m on.y4m
run enhance --quiet --mode never grey.y4m off.y4m
[ "$(cmp -l on.y4m off.y4m | awk '{ print int(($1 - 21) / 28806) + 1 }' | uniq | sed -n '1p;$p' | xargs)" = '1 275' ] ||
    fail 'the caption comes or goes in another frame'
caption() { run caption --size 160x120 --frame "$1" - | tail -c $size | tr -d '\200' | wc -c; }
[ "$(caption 275)" != 0 ] && [ "$(caption 276)" = 0 ] || fail 'the caption alone is not that of its frame'

# Tuning: errors that fall, a table, and two pictures; nothing is written over before it is known to end well.
bitmap() {  # WIDTH HEIGHT, multiples of 4 below 256: 24 bits, with pixels from the program itself
    printf "BM\0\0\0\0\0\0\0\0\66\0\0\0\50\0\0\0\\$(printf %o "$1")\0\0\0\\$(printf %o "$2")\0\0\0\1\0\30\0"
    head -c 24 /dev/zero && tail -c $(($1 * $2 * 3)) "$clarivex"
}
bitmap 96 64 >target.bmp && bitmap 64 96 >portrait.bmp && bitmap 8 8 >small.bmp
echo mine | tee in.bmp >out.bmp
expect 1 'small.bmp: a picture of 8x8 cannot be tuned on .* at least 33x17' tune small.bmp
limit=2 expect 1 'in.bmp: cannot be written any further' tune --quiet target.bmp
[ "$(cat in.bmp out.bmp *.part 2>/dev/null)" = $'mine\nmine' ] || fail 'tuning in vain changes files'
mkdir folder && cd folder && mkdir out.bmp && expect 1 'out.bmp: cannot be replaced: it is a folder' tune ../target.bmp
[ ! -s output ] || fail 'a search in vain'
cd ..
cp target.bmp out.bmp && expect 1 'out.bmp: is the file that this command writes' tune out.bmp
head -c 700 target.bmp >cut.bmp && expect 1 'cut.bmp: row 2 of the bitmap.s 64 is cut short' tune cut.bmp
while read -r bytes pattern arguments; do
    expect 0 "^clarivex: ${pattern//_/ }, err [0-9.]+ to [0-9.]+\$" tune $arguments
    [ "$(wc -c <in.bmp),$(wc -c <out.bmp)" = "$bytes" ] || fail "sizes of in.bmp and out.bmp: $arguments"
done <<'END'
8502,18486 1_attempt,_43x64_to_64x96 portrait.bmp --attempts 1 --seed 0
18486,18486 2_attempts,_64x96_to_64x96 portrait.bmp --attempts 2 --scale 1
8310,18486 60_attempts,_64x43_to_96x64 target.bmp --attempts 60
END
grep -Eq '^err : [0-9]+\.[0-9]{5}$' output || fail 'no attempt improves'
grep '^err' output | sort -c -t : -k 2 -g -r || fail 'errors that do not fall'
grep -Eq '^kernelBeta +98 +[0-9]+$' output || fail 'no table of settings'
run tune --quiet --attempts 60 --seed 1 - <target.bmp >again 2>errors || fail 'tuning from a pipe'
cmp -s output again || fail 'another run with the same seed finds other settings'
[ ! -s errors ] || fail 'tune --quiet spoke'

# What breaks off is told, and the frames before it are whole.
head -c $((${#header} + 1 + 2 * 4614 + 6 + 1000)) clip.y4m >cut.y4m
expect 1 'cut.y4m: frame 2 is cut short: 4608 bytes expected, 1000 found; 2 whole frames were written' \
    enhance cut.y4m cut_out.y4m
begins $((first_bytes + 2 * enlarged_bytes)) good.y4m cut_out.y4m || fail 'the whole frames before a cut'

# What needs no video. The system's own list of the processor's features is the measure of ours.
run enhance -h 2>errors | grep -q -- '--sharpness N  *crispness of edges; 0 to 2; default 1$' || fail 'the help of a command'
run help play 2>>errors | grep -q '^  Left Right *5 seconds back or on$' || fail 'the keys in the help'
{ run help enhance && run help play; } 2>>errors | grep '.\{81\}' && fail 'lines of the help that a terminal breaks'
run --help 2>>errors | grep -q '^  enhance  ' || fail 'the overview'
run info >info 2>>errors || fail 'info'
[ ! -s errors ] || fail 'info speaks on standard error'
[ "clarivex $(sed -n 's/^version: *//p' info)" = "$(run -V)" ] || fail 'info tells another version'
for feature in cmov mmx sse sse2 avx2 avx512bw avx512vbmi; do
    [ "$(grep -c "^processor:.* $feature\(,\|$\)" info)" = "$(grep -m 1 ^flags /proc/cpuinfo | grep -cw $feature)" ] ||
        fail "info is wrong about $feature"
done

[ "$failures" = 0 ] || { echo "$failures checks failed" && exit 1; }
