# The command line with its manual page and completion.
check_program() (
    holds clarivex <<END
./usr/bin/clarivex
./usr/share/bash-completion/completions/clarivex
./usr/share/doc/clarivex/CHANGELOG.md
./usr/share/doc/clarivex/README.md
./usr/share/doc/clarivex/changelog.gz
./usr/share/doc/clarivex/copyright
./usr/share/man/man1/clarivex.1.gz
END
    # The program runs, and is the one that the package says it is.
    clarivex=$root/usr/bin/clarivex
    [ "$("$clarivex" --version)" = "clarivex $version" ] || fail 'the program tells another version'
    "$clarivex" caption --size 96x64 - | "$clarivex" enhance --quiet - - | head -n 1 | grep -q ' W144 H96 ' ||
        fail 'the program does not enhance'

    # The manual page is laid out without a complaint, and tells the options of every command.
    said=$(gzip -dc "$root/usr/share/man/man1/clarivex.1.gz" | groff -man -Tutf8 -ww 2>&1 >"$root/var/page")
    [ -z "$said" ] || fail "the manual page: $said"
    for command in enhance play compare caption tune; do
        "$clarivex" help "$command" | grep -oE '^  (-., )?--[a-z-]+' | grep -oE -- '--.*' | while read -r option; do
            sed 's/\x1b\[[0-9;]*m//g; s/.\x08//g' "$root/var/page" | grep -q -- "$option" || fail "the manual page lacks $option"
        done
    done

    # completes TO WORD…: what the last word, which may be empty, is completed to, in the order of letters. The shell makes "=" a
    # word of its own.
    try_completion='compopt() { :; }; . "$0" && COMP_WORDS=(clarivex "$@") COMP_CWORD=$# && _clarivex &&
        printf "%s\n" "${COMPREPLY[@]}"'
    completes() {
        local expected=$1 script=$root/usr/share/bash-completion/completions/clarivex got
        shift
        got=$(bash -c "$try_completion" "$script" "$@" | LC_ALL=C sort | xargs)
        [ "$got" = "$expected" ] || fail "'$*' is completed to '$got' instead of '$expected'"
    }
    cd "$root/usr/share/doc/clarivex"
    completes 'enhance' enh
    completes '--mode' enhance --mo
    completes 'always auto never' enhance a.mp4 --mode ''
    completes 'always auto never' enhance --mode =
    completes 'always auto' enhance --mode = a
    completes '--layout --lighting --limits' compare --l
    completes '1 2 3/2' tune --scale ''
    completes 'changelog.gz copyright' enhance c
    completes '../clarivex' enhance --into ../c
    completes '' enhance --into c
    completes '' enhance --quality ''
    completes 'caption compare' help c
)
