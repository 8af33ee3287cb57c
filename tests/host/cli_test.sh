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

# expect CODE PATTERN ARGUMENT…: the exit code, and exactly one line on standard error that matches the pattern.
expect() {
    local code=$1 pattern=$2
    shift 2
    timeout 60 "$clarivex" "$@" >output 2>errors </dev/null
    local got=$?
    [ "$got" = "$code" ] || fail "exit code $got instead of $code: $*"
    [ "$(wc -l <errors)" = 1 ] || fail "one line on standard error was expected: $*"
    grep -Eq -- "$pattern" errors || fail "standard error does not say '$pattern': $*"
}

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

# Wrong use: code 2.
expect 2 'a command is missing.*--help'
expect 2 '--attempts 0: the value must be a whole number from 1' tune --attempts 0 target.bmp
expect 2 'needs two files' enhance clip.y4m
expect 2 '--plugin works in the Windows program only' enhance --plugin some.dll clip.y4m out.y4m
[ ! -e out.y4m ] || fail 'wrong use left an output file'

# Streams that cannot be enhanced: code 1, and no output file.
stream() { { echo "$1" && frames "${2:-1}"; } >bad.y4m; }
expect 1 'missing.y4m: cannot be opened for reading' enhance missing.y4m out.y4m
expect 1 ': cannot be opened for reading: it is a folder' enhance . out.y4m
expect 1 'standard input: is empty' enhance - out.y4m
stream 'RIFF....AVI' && expect 1 'bad.y4m: is not a Y4M stream; ffmpeg' enhance bad.y4m out.y4m
stream 'YUV4MPEG2 W64 H48 C422' && expect 1 'bad.y4m: chroma format C422 .*yuv420p' enhance bad.y4m out.y4m
stream 'YUV4MPEG2 W12 H48' && expect 1 '12x48 is too small: .* at least 16' enhance bad.y4m out.y4m
[ ! -e out.y4m ] || fail 'a refused stream left an output file'

# Outputs that cannot be written: code 1.
expect 1 'no/out.y4m: cannot be opened for writing' enhance clip.y4m no/out.y4m
cp clip.y4m same.y4m
expect 1 'same.y4m: is the input file too' enhance same.y4m ./same.y4m
cmp -s clip.y4m same.y4m || fail 'the input was harmed'
if [ -c /dev/full ]; then
    expect 1 '/dev/full: cannot be written any further.*0 whole frames were written' enhance clip.y4m /dev/full
fi

# A good run keeps the tags and tells what it did.
expect 0 '5 frames, 64x48 to 96x72, [0-9.]+ frames/s' enhance clip.y4m good.y4m
first=$(head -n 1 good.y4m)
[ "$first" = "${header/W64 H48/W96 H72}" ] || fail "header of the output: $first"
[ "$(wc -c <good.y4m)" = $((${#first} + 1 + 5 * enlarged_bytes)) ] || fail 'size of the output'
timeout 60 "$clarivex" enhance --quiet clip.y4m - >piped.y4m 2>errors || fail 'a run into a pipe'
cmp -s good.y4m piped.y4m || fail 'a pipe carries other bytes than a file'
[ ! -s errors ] || fail '--quiet spoke'
timeout 60 "$clarivex" enhance --quiet - piped.y4m <clip.y4m || fail 'a run from a pipe'
cmp -s good.y4m piped.y4m || fail 'standard input gives other bytes than a file'
expect 0 '^clarivex: timing: 2 frames in ProcessOutput, total .* mean .* minimum .* median' \
    enhance --quiet --timing --frames 2 clip.y4m two.y4m
cmp -s <(head -c "$(wc -c <two.y4m)" good.y4m) two.y4m || fail '--frames gives other frames'
expect 0 '64x48 to 64x48' enhance --mode never --format yuy2 clip.y4m packed.y4m
head -n 1 packed.y4m | grep -q 'W64 H48 .*C422' || fail 'yuy2 is not written as 4:2:2'

# High definition, bypassed, comes through byte for byte.
{ echo 'YUV4MPEG2 W1024 H576 F25:1' && printf 'FRAME\n' && yes abc | head -c $((1024 * 576 * 3 / 2)); } >hd.y4m
timeout 60 "$clarivex" enhance --hd bypass hd.y4m same_hd.y4m 2>errors || fail 'bypassing high definition'
grep -q 'note: high definition is bypassed' errors || fail 'no word about the bypass'
cmp -s hd.y4m same_hd.y4m || fail 'a bypassed video was changed'

# The caption: off unless asked for, gone after 276 frames, and below the picture's middle.
enhance_with() { timeout 60 "$clarivex" enhance --quiet --caption "$1" clip.y4m "$2" || fail "caption $1"; }
enhance_with off without.y4m && cmp -s good.y4m without.y4m || fail 'the caption is not off by default'
enhance_with on with.y4m && ! cmp -s good.y4m with.y4m || fail 'no caption where it was asked for'
caption() { timeout 60 "$clarivex" caption --size 320x240 --frame "$1" "$2" 2>errors || fail "caption $1"; }
caption 100 caption.y4m && caption 276 gone.y4m
[ "$(wc -c <caption.y4m)" = "$(wc -c <gone.y4m)" ] || fail 'size of the caption alone'
! cmp -s caption.y4m gone.y4m || fail 'the caption does not go'
cmp -s <(head -c $((80 + 320 * 120)) caption.y4m) <(head -c $((80 + 320 * 120)) gone.y4m) || fail 'caption too high'

# Tuning: errors that fall, a table, and two pictures; the target is never written over.
bitmap() {  # of 96x64 at most, 24 bits, with pixels from the program itself
    printf 'BM\0\0\0\0\0\0\0\0\66\0\0\0\50\0\0\0\140\0\0\0\100\0\0\0\1\0\30\0'
    head -c 24 /dev/zero && tail -c "${1:-18432}" "$clarivex"
}
bitmap >target.bmp
expect 0 '^clarivex: 60 attempts, 64x43 to 96x64, err [0-9.]+ to [0-9.]+$' tune target.bmp --attempts 60
grep -Eq '^err : [0-9]+\.[0-9]{5}$' output || fail 'no attempt improves'
grep '^err' output | sort -c -t : -k 2 -g -r || fail 'errors that do not fall'
grep -Eq '^kernelBeta +98 +[0-9]+$' output || fail 'no table of settings'
[ "$(wc -c <in.bmp) $(wc -c <out.bmp)" = "$((54 + 192 * 43)) 18486" ] || fail 'sizes of in.bmp and out.bmp'
timeout 60 "$clarivex" tune --quiet --attempts 60 --seed 1 - <target.bmp >again 2>errors || fail 'tuning from a pipe'
cmp -s output again || fail 'another run with the same seed finds other settings'
[ ! -s errors ] || fail 'tune --quiet spoke'
cp target.bmp out.bmp && expect 1 'out.bmp: is the file that this command writes' tune out.bmp
cmp -s target.bmp out.bmp || fail 'the target was written over'
bitmap 700 >cut.bmp && expect 1 'cut.bmp: row 2 of the bitmap.s 64 is cut short' tune cut.bmp

# What breaks off is told, and the frames before it are whole.
head -c $((${#header} + 1 + 2 * 4614 + 6 + 1000)) clip.y4m >cut.y4m
expect 1 'cut.y4m: frame 2 is cut short: 4608 bytes expected, 1000 found; 2 whole frames were written' \
    enhance cut.y4m cut_out.y4m
cmp -s <(head -c $((${#first} + 1 + 2 * enlarged_bytes)) good.y4m) cut_out.y4m || fail 'the whole frames before a cut'

# A closed pipe ends the run with one line; it must neither hang nor die of a signal.
{ echo "$header" && frames 200; } >long.y4m
timeout 60 "$clarivex" enhance long.y4m - 2>errors | head -c 10 >/dev/null
codes=("${PIPESTATUS[@]}")
[ "${codes[0]}" = 1 ] || fail "exit code ${codes[0]} after a closed pipe"
[ "$(wc -l <errors)" = 1 ] || fail 'one line about a closed pipe was expected'
grep -q 'standard output: cannot be written' errors || fail 'no line about a closed pipe'

# What needs no video.
for option in --help --version info; do
    timeout 60 "$clarivex" "$option" >output 2>errors || fail "$option"
    [ -s output ] || fail "$option says nothing"
    [ ! -s errors ] || fail "$option speaks on standard error"
done

[ "$failures" = 0 ] || { echo "$failures checks failed" && exit 1; }
