#!/bin/bash
# What benchmarks say of measured times, and the large project that they make.
# usage: figures_test.sh PROGRAMS
# shellcheck source=tests/common.sh
. "$(dirname "$0")/../common.sh"
type -P jq make >/dev/null || skip 'jq or make is missing'

figures() { # figures PERCENT COMMAND...: with the lists below
    bash -c '. "$1/bench/figures.sh"; work=$2 results=$2/results.json percent=$3; "${@:4}"' bash "$root" "$work" "$@"
}

printf '%s\n' 30 9.5 100 >odd.times
printf '%s\n' 10 40 20 30 >even.times
echo '{"results": []}' >results.json
printf '%s\n' {12..1} >twelve.times
while IFS='|' read -r percent command expected; do
    # shellcheck disable=SC2086 # words
    expect "$percent: $command" "$expected" "$(figures "$percent" $command | tr -s ' ')"
done <<'END'
50|typical odd|30
50|typical even|20
10|typical odd|9.5
10|typical twelve|2
50|ratio even odd|0.67
50|against reached odd even 1.5|reached 1.50 x goal: at most 1.5 x
50|result missed 17 MiB 16|missed 17 MiB goal: at most 16 MiB (missed)
END
expect 'results as JSON' '["reached",1.5,"x",1.5]
["missed",17,"MiB",16]' "$(jq -c '.results[] | [.what, .value + 0, .unit, .goal + 0]' results.json)"

"$root/bench/large_project.sh" 200 large
make -n -C large run >steps
while IFS='|' read -r number what pattern; do
    expect "$what" "$number" "$(grep -c -e "$pattern" steps)"
done <<'END'
205|sources and programs compiled| -c 
2|libraries|^ar rcs lib[01]/libl[01].a\( lib[01]/s[0-9]*.o\)\{100\}$
4|programs of one library|^gcc \(program[0-3]\).o lib[01]/libl[01].a -o \1$
1|program of both libraries|^gcc whole.o lib0/libl0.a lib1/libl1.a -o whole$
5|runs|^\./[pw][a-z]*[0-3]\? 7$
END
expect 'the sources compile' 0 "$(make -C large whole.o program3.o lib1/s199.o >make.log 2>&1; echo $?)"
finish
