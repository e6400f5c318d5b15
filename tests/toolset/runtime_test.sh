#!/bin/bash
# Programs that end in every way, and what their dump files add up to.
# shellcheck source=tests/toolset/runtime_fixture.sh
. "$(dirname "$0")/runtime_fixture.sh"
build static "$exec_part" "$binaries/liblltcov_rt.a" -ldl -pthread
build static_norelro "$exec_part" "$binaries/liblltcov_rt.a" -ldl -pthread -Wl,-z,norelro
build shared "$exec_part" -L"$binaries" -Wl,-rpath,"$binaries" -llltcov_rt -ldl -pthread
build bits -DMODE=0 "$exec_part" "$binaries/liblltcov_rt.a" -ldl -pthread
build marked -DMARK='"/"' "$exec_part" "$binaries/liblltcov_rt.a" -ldl -pthread
build bytes -DMODE=2 "$exec_part" "$binaries/liblltcov_rt.a" -ldl -pthread
build plugin.so -DPLUGIN -fPIC -shared "$binaries/liblltcov_rt.a"
echo '{ global: run_plugin; local: *; };' > hidden.map
hidden() { # hidden OUTPUT OPTION...
    build "$1" -DPLUGIN -fPIC -shared -Wl,--version-script=hidden.map,--gc-sections "${@:2}" \
        "$binaries/liblltcov_rt.a"
}
hidden hidden.so
hidden hidden_norelro.so -Wl,-z,norelro

# sums of the module | exit status | environment | arguments
while IFS='|' read -r expected status environment arguments; do
    for program in static shared; do
        rm -rf root
        # shellcheck disable=SC2086
        { env LLTCOV_ROOT=root $environment ./$program $arguments < /dev/null; } 2> messages
        expect "$program $environment $arguments: status" "$status" $?
        [ "${arguments#wait*daemon}" = "$arguments" ] || sleep 2
        [ "$arguments" != daemon ] || sleep 0.3
        expect "$program $environment $arguments" "$expected" "$(sums program-m)"
    done
done <<'ROWS'
0=1 of 1|0||exit
0=1 9=1 of 1|0|TEST_LATE=1|exit
of 0|0||_exit
0=1 2=1 of 1|0||dump__exit
0=2 of 1|0||reset
0=1 of 1|0||exec v
0=1 of 1|0||exec vp
0=1 of 1|0||exec ve
0=1 of 1|0||exec l
0=1 of 1|0||exec lp
0=1 of 1|0||exec le
0=1 2=1 of 1|0||exec nowhere
0=1 1=1 2=1 of 2|0||fork exit
0=1 2=1 of 1|0||fork _exit
0=1 1=1 2=1 of 2|0||fork dump
0=1 5=1 of 2|0||daemon
0=1 2=1 of 1|0||vfork
0=2 of 2|0||vfork_exec
0=1 2=50 3=1600 of 1|0||threads
0=1 of 1|0||closed
0=1 6=1 of 1|0|TEST_TIMER=1,60|wait
0=1 6=1 of 1|0|TEST_TIMER=60,1|wait
0=1 6=1 of 2|0|TEST_TIMER=1|wait daemon
of 0|0|TEST_TIMER=0|wait
0=1 of 1|0|TEST_SIGNAL=10|raise 10
0=1 of 1|143|TEST_SIGNAL=15|raise 15
0=1 of 1|10|TEST_SIGNAL=10 TEST_HANDLER=10|raise 10
0=1 of 1|139|TEST_SIGNAL=11|raise 11
0=1 of 1|0||hidden ./hidden.so
0=1 of 1|0|TEST_SIGNAL=10|plugin ./hidden.so 10
0=1 of 1|0||plugin ./plugin.so
ROWS
expect "a library's counts outlive it" "7=1 of 1" "$(sums plugin-m)"

while read -r program arguments; do
    rm -rf root
    # shellcheck disable=SC2086
    LLTCOV_ROOT=root ./$program $arguments
    expect "$program $arguments reaches every copy of the runtime" "0=1 of 1 7=1 of 1" \
        "$(sums program-m) $(sums plugin-m)"
done <<'ROWS'
static hidden ./hidden.so
static hidden_exec ./hidden.so
static hidden_exec ./hidden_norelro.so
static_norelro hidden_exec ./hidden.so
ROWS
rm -rf root
for how in exit _exit exit vfork; do LLTCOV_ROOT=root ./static $how; done
expect "processes add up" "0=3 2=1 of 3" "$(sums program-m)"
expect "in one file" 1 "$(files)"
LLTCOV_ROOT=root ./marked exit
expect "a name that is no file name" "0=1 of 1" "$(sums program_m)"
for program in bits bytes; do
    rm -rf root
    LLTCOV_ROOT=root ./$program fork exit
    expect "$program" "0=1 1=1 2=1 of 2" "$(sums program-m)"
done

# The last words of the file: one that adds up, one that nothing counts, two that join by "or".
rm -rf root
for how in 1 6 2; do LLTCOV_ROOT=root ./static flags $how; done
expect "what joins by or" "3 0 7 8" "$(words root/program-m.* | tail -n 4 | xargs)"

# Which names the compiler puts in place of those functions is told by the compiler.
cat > replaced.c <<'C'
#include <unistd.h>
int main(int n, char** v)
{
    if (fork()) execv("", v); else if (n == 1) execvp("", v); else if (n == 2) execve("", v, v);
    if (n == 3) execl("", "", (char*)0); else if (n == 4) execlp("", "", (char*)0);
    return execle("", "", (char*)0, v);
}
C
$compiler -fprofile-arcs -c replaced.c -o replaced.o
nm "$binaries/liblltcov_rt.a" 2> /dev/null | sed -n 's/.* W \(__gcov_.*\)/\1/p' | sort > ours
if nm replaced.o | grep -q ' U __gcov_fork'; then # not every compiler replaces all
    nm replaced.o | sed -n 's/.* U \(__gcov_\(fork\|exec.*\)\)$/\1/p' | sort > theirs
    expect "the compiler's names" "" "$(comm -23 theirs ours | xargs)"
fi

# where the root is
rm -rf root area
LLTCOV_ROOT='' TEST_ROOT="root/a b/c" ./static exit
expect "the stub's root, with parents" 1 "$(find "root/a b/c" -name '*.lltcov' | wc -l)"
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
expect "the limit to raise" "let the program write larger files (ulimit -f)" \
    "$( (ulimit -f 0; LLTCOV_ROOT=root exec ./static exit 2>&1) | sed 's/.*; //')"
rm -rf root
# Descriptors that this script was started with would be counted too.
(for fd in 3 4 5 6 7 8 9; do eval "exec $fd<&-"; done; ulimit -n 4; LLTCOV_ROOT=root exec ./static exit)
expect "one descriptor is left" "0=1 of 1" "$(sums program-m)"
{ { sleep 0.1; LLTCOV_ROOT=file/x ./static exit; echo $? >&3; } 2>&1 | :; } 3> status
expect "nobody listens" 0 "$(cat status)"
LLTCOV_ROOT=file/x ./static reopened
expect "a standard error that became data" "0 data" "$(wc -c data)"

# the whole file, byte for byte: 40, 3 and 4 counters make 376 bytes, and 8 for the processes
rm -rf root
order=$(printf '\1\0' | od -An -tu2 | sed 's/ *1$/little/; s/ *256$/big/')
header() { # header [TEST-LINE]
    printf '%s\n' 'lltcov 2' 'module program-m' 'project a "b"' 'buid Q1' 'mode 1' \
        'area area/program/codemeasure' "$@" "order $order" 'file 0 first.c 320' \
        'file 1 second.c 24' 'file 5 flags.c:16 32' 'counts 384'
}
LLTCOV_ROOT=root ./static exit
{ header; printf '\1\0\0\0\0\0\0\0\1'; head -c 375 /dev/zero; } > expected
[ "$order" != little ] || cmp root/program-m.Q1.*.0.lltcov expected
expect "the file" 0 $?
LLTCOV_ROOT=root LLTCOV_TEST=$'one two\n' ./static exit
LLTCOV_ROOT=root LLTCOV_TEST=other ./static exit
LLTCOV_ROOT=root LLTCOV_TEST='' ./static exit
expect "files by test" "0=4 of 4 in 3" "$(sums program-m) in $(files)"
header 'test one two?' > expected
expect "the test in the header" "yes" \
    "$(for file in root/*; do sed '/^counts /q' "$file" | cmp -s - expected && echo yes; done)"

# a hash that is known: FNV-1a of 64 bits over the header
hash=$(header | od -An -v -tu1 -w1 | awk '{ print $1 }' | {
    h=$((0xcbf29ce484222325))
    while read -r byte; do h=$(((h ^ byte) * 0x100000001b3)); done
    printf '%016x' $h
})
expect "the name" "root/program-m.Q1.$hash.0.lltcov" "$(ls root/program-m.Q1."$hash".*)"

# A machine of the other byte order. The program registers itself, as a stub does: no table.
shopt -s extglob
if type s390x-linux-gnu-gcc qemu-s390x > /dev/null 2>&1; then
    rm -rf root
    s390x-linux-gnu-gcc -std=gnu99 -D_GNU_SOURCE -fvisibility=hidden -w -I"$sources" -I"$sources/../.." -static \
        "$here/runtime_program.c" "$exec_part" "$sources"/!(start|wrap).c -o foreign 2> messages
    for how in 1 6; do LLTCOV_ROOT=root qemu-s390x ./foreign flags $how; done
    expect "the other byte order" "2 0 7 8 big" \
        "$(words root/program-m.* | tail -n 4 | xargs) $(sed -n '/^order /{s///p;q}' root/*)"
else
    echo "skipped: there is no emulator of another byte order"
fi
finish
