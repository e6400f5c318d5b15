#!/bin/bash
# Results of runs on other machines: their dumps, which were directed elsewhere and copied back, count as if
# the programs had run here; what cannot is named and left out.
# shellcheck source=tests/common.sh
. "$(dirname "$0")/../common.sh"
mkdir -p there/project && cd there/project || exit 2
printf '%s\n' 'int main(int argc, char **argv)' '{' '    if (argc > 1)' '        return argv[1][0];' \
    '    return 0;' '}' > prog.c
logged env lltcov run -- sh -c 'gcc -g -O0 -c prog.c -o prog.o && gcc prog.o -o prog' || exit 2

run() { # run MACHINE [ARGUMENT]: with its counts in the machine's own directory
    LLTCOV_ROOT=$work/$1 ./prog ${2:+"$2"}
}
counts() { # of lines 1, 3, 4 and 5
    lltcov export --json "${maps[@]}" 2> /dev/null | grep '"line_counts"' | grep -o '\[[0-9]*, [0-9]*\]' |
        sed '5,$d; s/.*, //; s/]//' | paste -sd ' '
}
maps=()
# merged WHAT STATUS SUMMARY LINES ARGUMENT...: what a merge says, and what is counted after it
merged() {
    lltcov merge "${@:5}" > out 2> said
    expect "$1: status" "$2" $?
    expect "$1" "$3" "$(sed "s|$work/||" out)"
    expect "$1: counts" "$4" "$(counts)"
}
into="into 'there/project/.lltcov/llt_result'"

run a && run b && run b x
merged 'two machines' 0 "merged 2 dumps $into" '3 3 1 2' "$work/a" "$work/b"
merged 'the same again' 0 "merged 0 dumps $into; 2 were merged before" '3 3 1 2' "$work/a" "$work/b"
run a x
merged 'a later state' 0 "merged 1 dumps $into, 1 of them in the place of an earlier state" '4 4 2 2' "$work/a"
rm -r "$work/a" && run a
merged 'another run in its place' 0 "merged 1 dumps $into" '5 5 2 3' "$work/a"
merged 'as it was before' 0 "merged 0 dumps $into; 1 were merged before" '5 5 2 3' "$work/a"
LLTCOV_TEST=unit run c
merged 'a prefix' 0 "merged 1 dumps $into" '6 6 2 4' --prefix c/ "$work/c"
expect 'names of tests' 'c/unit 1' "$(lltcov tests prog.c:3 | sed '1d; s/  */ /g')"
mv "$work/c" "$work/d"
merged 'the same prefix, copied elsewhere' 0 "merged 0 dumps $into; 1 were merged before" '6 6 2 4' --prefix c/ "$work/d"

# What cannot be counted is named, and what can is merged. CHANGE of the file | what is said
whole=$(echo "$work/b"/*)
while IFS='|' read -r change words; do
    rm -rf "$work/e" && mkdir "$work/e" && sed "$change" "$whole" > "$work/e/odd.lltcov"
    merged "$words" 1 "merged 0 dumps $into" '6 6 2 4' "$work/e"
    expect "$words: said" 1 "$(grep -c "odd.lltcov.*$words.*left out" said)"
done <<'ROWS'
$s/.$//|there are not .* bytes after this line
s/^buid .*/buid other/|is of build other of prog_exe, '.*prog' is of build
s/^area .*/area .nowhere.prog_exe.codemeasure/|is no module of
s/^file 0 prog/file 0 grop/|counts 'grop_c_.*' otherwise than prog_exe is built
ROWS
while IFS='|' read -r arguments status words; do
    # shellcheck disable=SC2086 # words
    lltcov merge $arguments > out 2> said
    expect "$arguments" "$status yes" "$? $(grep -q -- "$words" said && echo yes)"
done <<ROWS
|2|name the directories
$work/none|1|holds no dump
.lltcov/llt_result|1|nothing to merge
--map /there $work/b|2|THERE=HERE
ROWS
expect 'no other file is written' 4 "$(find .lltcov/llt_result -type f | wc -l)"

# The project has moved with what its build left, and its programs ran where it was.
cd "$work" && mv there here && cd here/project || exit 2
rm .lltcov/llt_result/*
into="into 'here/project/.lltcov/llt_result'"
maps=(--map "$work/there/=$work/here")
merged 'a path of another machine' 1 "merged 0 dumps $into" '0 0 0 0' "$work/b"
merged 'mapped' 0 "merged 1 dumps $into" '2 2 1 1' "${maps[@]}" "$work/b"
./prog
lltcov status "${maps[@]}" > /dev/null 2> said
eval "$(sed -n "s/.*write to '.*set LLTCOV_ROOT=.*; '\(lltcov merge .*\)' takes.*/\1/p" said)" > out 2>&1
expect 'what a program that moved has written where it was' "merged 1 dumps $into, 3 3 1 2" "$(sed "s|$work/||" out), $(counts)"
expect 'without the map' 1 "$(lltcov export --lcov 2>&1 | grep -c 'gone.*--map OLD=NEW')"
finish
