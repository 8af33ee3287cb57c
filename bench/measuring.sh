# What the scripts that compare share, and source: programs, clips, lowest values, and tables in Markdown.
#
# All runs are single-threaded, on one processor core where taskset is at hand, and interleaved: each round runs every
# program once on a clip, and the lowest value of all rounds counts, so that a busy moment of the machine falls on nobody.
# ROUNDS=5 and SIZES="352x288 …" change the defaults.
#
# shellcheck shell=bash disable=SC2034  # the scripts use what is set here

set -eu
clarivex=${1:-build/native/clarivex}
bench=$(dirname "$clarivex")/clarivex_bench
rounds=${ROUNDS:-5}
sizes=${SIZES:-352x288 640x480 720x576 1280x720}
[ -x "$clarivex" ] || { echo "${0##*/}: $clarivex is missing; run 'make build'" >&2 && exit 1; }
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
clip=$folder/clip.y4m

pinned=()
if command -v taskset >/dev/null; then pinned=(taskset -c "$(taskset -cp $$ | sed 's/.*[ ,-]//')"); fi
plain_ffmpeg=(ffmpeg -hide_banner -loglevel error -nostdin -y)
ffmpeg=("${pinned[@]}" "${plain_ffmpeg[@]}" -threads 1 -filter_threads 1)
every_set=$("$clarivex" info | sed -n 's/^instruction sets: *//p' | tr -d ,)
vector_sets=${every_set#scalar }

# make_clip WIDTHxHEIGHT [FILE]: a clip of as many frames as make 30 million samples, and forgets what was kept.
make_clip() {
    frames=$((30000000 / (${1%x*} * ${1#*x})))
    "${ffmpeg[@]}" -f lavfi -i "testsrc2=size=$1:rate=25,noise=alls=8:allf=t,format=yuv420p" -frames:v "$frames" \
        -f yuv4mpegpipe "${2:-$clip}"
    best=()
}

# keep NAME VALUE: the lowest value of that name so far.
declare -A best
keep() {
    best[$1]=$(awk -v old="${best[$1]:-}" -v new="$2" 'BEGIN { print old == "" || new + 0 < old + 0 ? new : old }')
}

# quietly COMMAND…: what it tells goes to $folder/told, and is shown when it fails.
quietly() { "$@" >/dev/null 2>"$folder/told" || { cat "$folder/told" >&2 && exit 1; }; }

# keep_frames NAME CLARIVEX… --timing …: keeps the time inside ProcessOutput of the quickest frame, in milliseconds.
keep_frames() {
    local name=$1
    shift
    quietly "$@"
    keep "$name" "$(sed -n 's/.*minimum \([0-9.]*\) ms.*/\1/p' "$folder/told")"
}

# run_bench BENCH NAMES: the benches whose names fit the regular expression, a line "name nanoseconds an item" each.
run_bench() {
    "${pinned[@]}" "$1" --benchmark_filter="$2" --benchmark_format=csv 2>/dev/null |
        awk -F, '/^"/ { gsub(/"/, ""); sub(/\/min_time.*/, "", $1); print $1, 1e9 / $7 }'
}

# quotient A B [FORMAT]: A / B, or a dash where one of them is not known.
quotient() {
    awk -v a="$1" -v b="$2" -v format="${3:-%.2f}" 'BEGIN { if (a == "" || b == "") print "-"; else printf format, a / b }'
}

# row CELL…: a row of a table, with a dash in empty cells; title_row CELL…: the first row, and the line below it.
row() {
    local cell
    printf '| %-14s |' "$1"
    for cell in "${@:2}"; do printf ' %10s |' "${cell:--}"; done
    echo
}
title_row() {
    row "$@"
    printf '| --- |'
    printf ' %.0s---: |' "${@:2}"
    echo
}
