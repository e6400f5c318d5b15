#!/bin/bash
# Dumps that are killed, and what they ask of the system failing: each run is counted, or a line says so.
# With "all" as argument by all errors.
# shellcheck source=tests/toolset/runtime_fixture.sh
. "$(dirname "$0")/runtime_fixture.sh"
needs strace
build program "$exec_part" "$binaries/liblltcov_rt.a" -ldl -pthread
build static -static "$exec_part" "$binaries/liblltcov_rt.a" -pthread 2> messages
$compiler -w -shared -fPIC "$here/runtime_failing.c" -o failing.so -ldl || exit 2
export LLTCOV_ROOT=root
errors="EIO EINTR EACCES"
[ "${1:-}" != all ] || errors="EIO EINTR EMFILE EACCES ENOENT ENOSPC EROFS EPERM ELOOP"

# broken INJECTION: a run, of which one call is broken; its lines are in `messages`
broken() { { strace -qq -o trace -e "inject=$1" ./static exit > said 2> messages; } 2> killed; }
start() { # start OLD: the files before the run
    rm -rf root
    [ "$1" = none ] || cp -a "$1" root
}

killed_at() { # killed_at WHAT: the run was counted or not, and the next one is
    local was
    was=$(sums program-m)
    [ "$was" = "$counted" ] || expect "$1" "$lost" "$was"
    ./static exit
    [ "$was" != "$counted" ] || next=$((had + 2))
    expect "$1: the next run" "0=$next of $next, 1 and 1 files" \
        "$(sums program-m), $(files) and $(files '.*') files"
}

failed_at() { # failed_at WHAT: the run is counted, or a line says that it may not be
    local was
    was=$(sums program-m)
    if [ -s messages ]; then
        expect "$1: the line" "lltcov: coverage counts are lost: no dump file" \
            "$(sed 's/ of .*//' messages)"
        [ "$was" = "$lost" ] || expect "$1: counted" "$counted" "$was"
    else
        expect "$1" "$counted" "$was"
    fi
}

# each OLD CALL FAULT MORE: the N-th such call is broken, and with "+" all from there on, for each N
each() {
    local at=0 status next
    while
        at=$((at + 1))
        start "$1"
        broken "$2:$3:when=$at$4"
        status=$?
        next=$((had + 1))
        [ $status = 137 ] || grep -q INJECTED trace
    do
        broken_calls=$((broken_calls + 1))
        case $3 in
            signal=KILL) killed_at "$1, killed at $2 $at" ;;
            *) failed_at "$1, $2 $at$4 fails by $3" ;;
        esac
        case $3,$2 in
            *EINTR,close | *EINTR,newfstatat | signal*) ;;
            *EINTR,*) expect "$1, $2 $at goes on" " 1" "$(cat messages) $(files)" ;;
        esac
    done
}

# Two runs are there already, and what a killed one left beside, which is larger; or nothing.
./static exit && ./static exit
head -c 9000 /dev/zero > "root/.$(basename root/*.lltcov).tmp"
mv root two
for old in two none; do
    had=$([ $old = two ] && echo 2 || echo 0) broken_calls=0
    counted="0=$((had + 1)) of $((had + 1))"
    lost=$([ "$had" = 0 ] && echo "of 0" || echo "0=2 of 2")
    start $old
    strace -qq -o trace ./static exit
    sed -n 's/(.*//p' trace | sort -u | grep -v exit_group > calls
    while read -r call; do each $old "$call" signal=KILL ''; done < calls
    for call in openat mkdir readv write renameat2 flock ftruncate newfstatat close; do
        for error in $errors; do
            [ "$old$error" != noneEACCES ] || continue # as with files
            each $old $call "error=$error" ''
            # An EINTR would go on for ever, and without these nothing can be said.
            case $error$call in EINTR* | *write | *newfstatat) ;; *) each $old $call "error=$error" + ;; esac
        done
    done
    each $old mmap error=ENOMEM ''
    each $old mmap error=ENOMEM +
    expect "$old: broken calls" yes "$([ $broken_calls -gt 60 ] && echo yes || echo $broken_calls)"
done

# Each allocation fails: the arrays are counted, or a line says what is lost.
at=0 failed=failed
while [ -n "$failed" ]; do
    at=$((at + 1))
    rm -rf root
    { TEST_ROOT=root TEST_TIMER=60 TEST_SIGNAL=10 LLTCOV_TEST=test FAIL_MALLOC=$at \
        LD_PRELOAD=./failing.so ./program exit 2> messages 9> failed; } 2> killed
    failed=$(cat failed)
    grep -q '^lltcov: ' messages || expect "allocation $at fails" "0=1 of 1" "$(sums program-m)"
done
expect "allocations" yes "$([ $at -gt 6 ] && echo yes || echo $at)"

# Without locks each run has a file of its own, and what it costs does not grow with their number.
rm -rf root
calls() { FAIL_FLOCK=1 strace -qq -o trace -E LD_PRELOAD=./failing.so ./program exit; wc -l < trace; }
calls > said
first=$(calls)
for _ in {1..200}; do FAIL_FLOCK=1 LD_PRELOAD=./failing.so ./program exit; done
expect "calls after 200 runs of one process id" "$first" "$(calls)"
expect "without locks" "0=203 of 203" "$(sums program-m)"

# The sanitizers watch the runtime itself. Its reading of counters while they are counted is meant. The one
# for memory belongs to Clang, and takes what the newer functions of the C library fill in for unset.
echo 'race:image_' > races
cat > known.c << 'END'
#define _FILE_OFFSET_BITS 64
#include <fcntl.h>
#include <sanitizer/msan_interface.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>
int fstatat(int directory, const char* path, struct stat* state, int flags)
{
    __msan_unpoison(state, sizeof(*state));
    return (int)syscall(SYS_newfstatat, directory, path, state, flags);
}
int fstat(int file, struct stat* state) { return fstatat(file, "", state, AT_EMPTY_PATH); }
END
while IFS='|' read -r sanitizer compiler options actions; do
    read -ra options <<< "-fsanitize=$sanitizer -fno-sanitize-recover=all $options"
    echo 'int main(void) { return 0; }' > empty.c
    if ! { $compiler "${options[0]}" empty.c -o empty && ./empty; } 2> messages; then
        echo "skipped: $sanitizer"
        continue
    fi
    (build watched -g -D_GNU_SOURCE "${options[@]}" -Wl,--wrap=_exit,--wrap=_Exit -I"$root" \
        "$exec_part" "$sources"/*.c -ldl -pthread 2> messages)
    expect "$sanitizer: build" "0 " "$? $(cat messages)"
    IFS=, read -ra actions <<< "$actions"
    for how in "${actions[@]}"; do
        rm -rf root
        # A fork among threads may leave locks of the sanitizers' own allocators closed: none by a timer then.
        timer=TEST_TIMER=1
        [[ $how != *fork\ * ]] || timer=NO_TIMER=
        # shellcheck disable=SC2086
        env TSAN_OPTIONS="suppressions=races" ASAN_OPTIONS=detect_leaks=0 TEST_SIGNAL=10 $timer \
            timeout 60 ./watched $how > said 2>&1
        expect "$sanitizer: $how" "0 " "$? $(cat said)"
    done
done <<'SANITIZERS'
address,undefined|gcc||exit,fork exit,gcov_fork dump,threads without forks,reset,exec l,raise 10,wait
thread|gcc||exit,reset,exec l,raise 10,wait,threads without forks
memory|clang|known.c|exit,fork exit,gcov_fork dump,threads without forks,reset,exec l,raise 10,wait
SANITIZERS
finish
