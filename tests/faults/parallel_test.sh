#!/bin/bash
# Libraries made side by side, half of them with a name that another one has, too: each archive holds
# the stub of its own step; and after a build whose processes were killed at random, a clean build
# is the one that was made one step after the other.
# usage: parallel_test.sh PROGRAMS      LIBRARIES and ROUNDS in the environment: how many
libraries=${LIBRARIES:-8} rounds=${ROUNDS:-1}
# shellcheck source=tests/common.sh
. "$(dirname "$0")/../common.sh"
members=5

# Library i is lib$i.a, of an odd number in the directory of its own that lib$((i - 1)).a has.
make_project() {
    local i m name
    mkdir p && cd p || exit
    enter_project "$PWD"
    for ((i = 0; i < libraries; i++)); do
        mkdir "d$i"
        name=$((i - i % 2))
        echo "all: $PWD/d$i/lib$name.a"
        for ((m = 0; m < members; m++)); do
            echo "int f${i}_$m(int a) { return a + $m; }" >"d$i/m$m.c"
            echo "$PWD/d$i/m$m.o: $PWD/d$i/m$m.c; @lltwrapper gcc -c -o \$@ \$<"
        done
        echo "$PWD/d$i/lib$name.a: $(printf "$PWD/d$i/m%d.o " $(seq 0 $((members - 1))))"
        printf '\t@lltwrapper -artool ar -arsuffix .a ar rcs $@ $^\n'
    done >Makefile
}

build() { make "$@" all >"$work/log" 2>&1; }
clean() { rm -f d*/*.[ao]; }

# Each archive: it opens, and its stub registers the symbols of its own members and no others.
archives() {
    local archive
    for archive in d*/lib*.a; do
        nm "$archive" 2>&1 | grep -o 'g_QMRCovData_.*' | sort | uniq -c
        nm "$archive" 2>/dev/null | grep -c ' T ZJ_Start_'
    done
}

# What does not depend on which of two steps of one name came last.
tree() { find . -path ./llt_result -prune -o -type f -print | grep -v '/db[0-9]\|/ini/\|/before/' | sort; }

kill_at_random() {
    while :; do
        sleep 0.05
        kill -KILL "$(pgrep -f "lltwrapper.* $PWD/d" | shuf -n 1)" 2>/dev/null
    done
}

make_project
build -j1
expect 'a serial build' 0 "$?"
archives >../serial
tree >../serial_tree
for ((round = 1; round <= rounds; round++)); do
    clean
    build -j8
    expect "round $round: status" 0 "$?"
    archives >../parallel
    expect_file "round $round: archives" ../serial ../parallel

    clean
    kill_at_random &
    killer=$!
    for _ in 1 2 3; do build -k -j8; done
    kill $killer
    wait $killer 2>/dev/null
    clean
    build -j1
    expect "round $round: after kills" 0 "$?"
    archives >../parallel
    expect_file "round $round: archives after kills" ../serial ../parallel
    tree >../tree
    expect_file "round $round: files after kills" ../serial_tree ../tree
done
finish
