#!/bin/sh
# usage: runtime_test.sh RUNTIME_SOURCE_DIR RUNTIME_BINARY_DIR
# Programs that end in every way, and what their dump files add up to.
set -u
sources=$1 binaries=$2 here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'chmod -R u+w "$work"; rm -rf "$work"' EXIT
cd "$work" || exit 2
passed=0 failed=0

build() { # build OUTPUT OPTION...
    output=$1
    shift
    ${CC:-cc} -std=gnu99 -O1 -Wall -Wextra -I"$sources" "$here/runtime_program.c" "$@" -o "$output" ||
        exit 2
}
build static "$binaries/liblltcov_rt.a" -ldl -pthread
build shared -L"$binaries" -Wl,-rpath,"$binaries" -llltcov_rt -ldl -pthread
build bits -DMODE=0 "$binaries/liblltcov_rt.a" -ldl -pthread
build bytes -DMODE=2 "$binaries/liblltcov_rt.a" -ldl -pthread
build plugin.so -DPLUGIN -fPIC -shared "$binaries/liblltcov_rt.a"
echo '{ global: run_plugin; local: *; };' > hidden.map
build hidden.so -DPLUGIN -fPIC -shared -Wl,--version-script=hidden.map,--gc-sections \
    "$binaries/liblltcov_rt.a"

# "PROBE=SUM ..." over all dump files of the module, and the number of files; a file without its
# last line makes it "torn"
sums() {
    find root -name '*.lltcov' -exec awk -v module="$1" '
        FNR == 1 { torn += open; open = 1; ours = 0; first = 0 }
        $0 == "end" { open = 0 }
        $1 == "module" && $2 == module { ours = 1; ++files }
        ours && first { first = 0; probe = 0
            for (i = 1; i <= NF; ++i) { n = split($i, run, "*"); times = n > 1 ? run[2] : 1
                while (times-- > 0) sum[probe++] += run[1] }
            if (probe != 40) torn = 1 }
        $1 == "file" && $3 == "first.c" { first = 1 }
        END { if (open || torn) printf "torn "
            for (i = 0; i < 40; ++i) if (sum[i] > 0) printf "%d=%d ", i, sum[i]
            print "in " files + 0 }' {} + 2> /dev/null
}

expect() { # expect WHAT EXPECTED ACTUAL
    if [ "$2" = "$3" ]; then
        passed=$((passed + 1))
    else
        failed=$((failed + 1))
        printf 'FAILED %s\n  expected: %s\n  actual:   %s\n' "$1" "$2" "$3"
    fi
}

# sums of the module | exit status | environment | arguments
while IFS='|' read -r expected status environment arguments; do
    for program in static shared; do
        rm -rf root
        # shellcheck disable=SC2086
        env LLTCOV_ROOT=root $environment ./$program $arguments < /dev/null
        expect "$program $environment $arguments: status" "$status" $?
        [ "${arguments#wait*daemon}" = "$arguments" ] || sleep 2
        [ "$arguments" != daemon ] || sleep 0.3
        expect "$program $environment $arguments" "$expected" "$(sums program-m)"
    done
done <<'ROWS'
0=1 in 1|0||exit
0=1 9=1 in 1|0|TEST_LATE=1|exit
|0||_exit
0=1 2=1 in 1|0||dump__exit
0=2 in 2|0||reset
0=2 in 2|0||exec
0=1 1=1 2=1 in 2|0||fork_exit
0=1 2=1 in 1|0||fork__exit
0=1 1=1 2=1 in 2|0||fork_dump
0=1 5=1 in 2|0||daemon
0=1 2=1 in 1|0||vfork
0=1 2=50 3=1600 in 1|0||threads
0=1 in 1|0||closed
0=1 6=1 in 1|0|TEST_TIMER=1|wait
0=1 6=1 in 2|0|TEST_TIMER=1|wait daemon
|0|TEST_TIMER=0|wait
0=1 in 1|0|TEST_SIGNAL=10|raise 10
0=1 in 1|143|TEST_SIGNAL=15|raise 15
0=1 in 1|139|TEST_SIGNAL=11|raise 11
0=1 in 1|0||hidden ./hidden.so
0=1 in 1|0||plugin ./plugin.so
ROWS
expect "a library's counts outlive it" "7=1 in 1" "$(sums plugin-m)"

rm -rf root
LLTCOV_ROOT=root ./static hidden ./hidden.so
expect "a call reaches every copy of the runtime" "7=1 in 1" "$(sums plugin-m)"
rm -rf root
for how in exit _exit exit vfork; do LLTCOV_ROOT=root ./static $how; done
expect "processes add up" "0=3 2=1 in 3" "$(sums program-m)"
for program in bits bytes; do
    rm -rf root
    LLTCOV_ROOT=root ./$program fork_exit
    expect "$program" "0=1 1=1 2=1 in 2" "$(sums program-m)"
done

# where the root is
rm -rf root area
LLTCOV_ROOT='' TEST_ROOT="root/a b/c" ./static exit
expect "the stub's root, with parents" "0=1 in 1" "$(sums program-m)"
(cd / && LLTCOV_ROOT='' TEST_ROOT="$work/root2" "$work/static" exit)
expect "an absolute root" 1 "$(find root2 -name '*.lltcov' | wc -l)"
./static exit
expect "beside the work area" 1 "$(find area/llt_result -name '*.lltcov' | wc -l)"
touch file
lost() { # lost ROOT ARGUMENT...: what the program says, and its status
    LLTCOV_ROOT=$1
    shift
    (export LLTCOV_ROOT; "$@" 2>&1 > /dev/null; echo $?) | sed 's/ no .*: / /; s/;.*//' | tr '\n' ,
}
expect "a root that cannot be" \
    "lltcov: coverage counts are lost: the directory cannot be created (error 20),0," \
    "$(lost file/x ./static threads)"
expect "a root that is too long" \
    "lltcov: coverage counts are lost: the path is too long (error 36),0," \
    "$(lost "$(printf '%05000d' 0)" ./static exit)"
expect "files that may not grow" \
    "lltcov: coverage counts are lost: files may not grow so large (error 27),0," \
    "$(ulimit -f 0; lost root ./static exit)"
{ { sleep 0.1; LLTCOV_ROOT=file/x ./static exit; echo $? >&3; } 2>&1 | :; } 3> status
expect "nobody listens" 0 "$(cat status)"
LLTCOV_ROOT=file/x ./static reopened
expect "a standard error that became data" "0 data" "$(wc -c data)"

# the whole file, byte for byte
rm -rf root
LLTCOV_ROOT=root ./static exit
printf '%s\n' 'lltcov 1' 'module program-m' 'project a "b"' 'buid Q1' 'pid N' 'mode 1' \
    'area area/program/codemeasure' 'file 0 first.c 40 4' '1 0*39' 'file 1 second.c 3 4' '0*3' \
    end > expected
sed 's/^pid [0-9]*$/pid N/' root/program-m.*.Q1.0.lltcov | cmp - expected
expect "the file" 0 $?
expect "nothing beside it" 1 "$(find root -type f | wc -l)"
# shellcheck disable=SC2016
LLTCOV_ROOT=root sh -c ': > root/.program-m.$$.Q1.0.tmp; exec ./static exit'
expect "what a killed process left stays" "2 1" \
    "$(cat root/*.lltcov | grep -c '^end$') $(find root -name '.*.tmp' | wc -l)"
printf '%d passed, %d failed\n' "$passed" "$failed"
exit $((failed > 0))
